#include "platform/InterruptSignal.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>

#include "files/FileDescriptor.h"

namespace brimvault::platform {

namespace {

std::atomic<int> descriptorToWake = -1;

// In a signal handler hardly anything may be called: this only wakes the event loop.
void wake(int /*signal*/) {
    const int before = errno;
    constexpr std::uint64_t one = 1;
    (void)!::write(descriptorToWake, &one, sizeof one);
    errno = before;
}

class Handler final : public InterruptSignal {
public:
    explicit Handler(const std::function<void()>& call)
        : event_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), notifier_(event_.number(), QSocketNotifier::Read) {
        QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this, call] {
            notifier_.setEnabled(false);
            call();
        });
    }
    ~Handler() override {
        if (isInstalled_) {
            (void)::sigaction(SIGINT, &before_, nullptr);
            descriptorToWake = -1;
        }
    }

    [[nodiscard]] bool install() {
        struct sigaction action {};
        action.sa_handler = &wake;
        action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
        sigemptyset(&action.sa_mask);
        descriptorToWake = event_.number();
        isInstalled_ = event_.isOpen() && ::sigaction(SIGINT, &action, &before_) == 0;
        return isInstalled_;
    }

private:
    files::FileDescriptor event_;
    QSocketNotifier notifier_;
    struct sigaction before_ {};
    bool isInstalled_ = false;
};

}  // namespace

std::unique_ptr<InterruptSignal> onInterrupt(const std::function<void()>& call) {
    auto handler = std::make_unique<Handler>(call);
    return handler->install() ? std::move(handler) : nullptr;
}

}  // namespace brimvault::platform
