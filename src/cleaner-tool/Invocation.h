#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace brimvault::cleaner {

/// What the tool was started with; nothing of it is believed before it has been looked at.
struct Invocation {
    std::string name;       ///< under which it is to be met
    pid_t application = 0;  ///< the process that may use it
    uid_t user = 0;         ///< who started it, as told by what gave it its rights

    /// None unless there are exactly two arguments, a name and a process number, and the user is a number and not the
    /// administrator, who needs no such tool.
    static std::optional<Invocation> of(int count, const char* const* arguments, const char* user);
};

}  // namespace brimvault::cleaner
