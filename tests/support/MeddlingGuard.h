#pragma once

#include <functional>

#include "files/removal/Remove.h"

namespace brimvault::tests {

/// Asks another guard, where there is one, and runs a callback before it answers, as a racing thread could: another
/// object may have the name by then.
class MeddlingGuard final : public files::RemovalGuard {
public:
    MeddlingGuard(files::RemovalGuard* guard, std::function<void(const files::NodeStatus&)> meddle)
        : guard_(guard), meddle_(std::move(meddle)) {}

    bool onWay(const files::DirectoryHandle& folder, const files::NodeStatus& status) override {
        return guard_ == nullptr || guard_->onWay(folder, status);
    }
    bool mayRemove(const files::NodeStatus& node) override {
        const bool answer = guard_ == nullptr || guard_->mayRemove(node);
        meddle_(node);
        return answer;
    }

private:
    files::RemovalGuard* const guard_;
    const std::function<void(const files::NodeStatus&)> meddle_;
};

}  // namespace brimvault::tests
