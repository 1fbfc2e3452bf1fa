#include "platform/ChildSignals.h"

#include <csignal>
#include <utility>

namespace brimvault::platform {

namespace {

class SavedAction final : public ChildSignalAction {
public:
    bool restore() override { return ::sigaction(SIGCHLD, &before_, nullptr) == 0; }

    bool ignore() {
        struct sigaction ignore {};
        ignore.sa_handler = SIG_IGN;
        sigemptyset(&ignore.sa_mask);
        return ::sigaction(SIGCHLD, &ignore, &before_) == 0;
    }

private:
    struct sigaction before_ {};
};

}  // namespace

std::unique_ptr<ChildSignalAction> ignoreChildSignals() {
    auto action = std::make_unique<SavedAction>();
    return action->ignore() ? std::move(action) : nullptr;
}

}  // namespace brimvault::platform
