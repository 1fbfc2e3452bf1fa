#pragma once

#include <functional>
#include <memory>

namespace brimvault::platform {

/// While it lives, the first interrupt from the terminal (SIGINT) does not end the process, but calls; a second one
/// ends it.
class InterruptSignal {
public:
    virtual ~InterruptSignal() = default;
};

/// Calls on the event loop of this thread. One at a time in a process. Null if the system refuses: then an interrupt
/// ends the process as ever.
[[nodiscard]] std::unique_ptr<InterruptSignal> onInterrupt(const std::function<void()>& call);

}  // namespace brimvault::platform
