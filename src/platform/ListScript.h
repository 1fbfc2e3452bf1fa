#pragma once

#include <QString>
#include <chrono>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace brimvault::platform {

/// Runs a script of the program's own, a resource or a file, for the user whose home folder is `homeFolder()`, and
/// answers the list that it printed: each entry ends with a zero byte, and what follows the last one is no entry.
///
/// A script that takes longer than the limit is ended, with all that it has started, and what it had printed by then is
/// the answer. None when the script cannot be read, does not end well, prints more than any list is long (64 MiB), or
/// is stopped, which ends it as well. Blocks, for about a second longer than the limit at most; any thread but the main
/// one.
[[nodiscard]] std::optional<std::vector<std::string>> runListScript(const QString& script,
                                                                    std::chrono::milliseconds limit,
                                                                    const std::stop_token& stop);

}  // namespace brimvault::platform
