#pragma once

#include <memory>

namespace brimvault::platform {

/// What this process did at the end of a child (SIGCHLD) before it began to ignore it. Process-wide; one thread.
class ChildSignalAction {
public:
    virtual ~ChildSignalAction() = default;
    /// Whether the signal is handled as before again.
    [[nodiscard]] virtual bool restore() = 0;
};

/// From now on the process ignores the end of its children, and the system keeps no zombies of them. Null if the system
/// refuses.
[[nodiscard]] std::unique_ptr<ChildSignalAction> ignoreChildSignals();

}  // namespace brimvault::platform
