#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "files/trees/Remove.h"

namespace brimvault::tests {

/// A removal by a process of its own, under strace from the first system call of its work to the last; what the process
/// does to start is neither traced nor counted. Needs strace, and a system that lets it trace.
struct TracedRemoval {
    /// Starts it, and waits until it has ended; it is ended after a while if it has not. The options say what strace
    /// traces and injects. Nothing in the process that calls is shared with the removal.
    static TracedRemoval run(const std::filesystem::path& item, const std::vector<std::string>& options);

    static constexpr const char* notEnded = "did not end";  ///< the trouble of one that had to be ended

    std::string untried;                           ///< why nothing was tried: strace is missing, or may not trace
    std::string trouble;                           ///< how the process ended, or what it said, when that was no outcome
    std::optional<files::RemovalOutcome> outcome;  ///< unless there was trouble
    std::string trace;                             ///< what strace wrote
};

}  // namespace brimvault::tests
