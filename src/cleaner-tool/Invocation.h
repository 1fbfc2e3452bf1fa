#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace brimvault::cleaner {

/// The arguments of the tool, parsed and checked: they come from an unprivileged process.
struct Invocation {
    std::string name;       ///< of the socket to listen on
    pid_t application = 0;  ///< the process that may connect
    uid_t user = 0;         ///< who started the tool, as pkexec says

    /// None unless there are exactly two arguments, a socket name and a process ID, and the user is a number other than
    /// root's, who needs no such tool.
    static std::optional<Invocation> of(int count, const char* const* arguments, const char* user);
};

}  // namespace brimvault::cleaner
