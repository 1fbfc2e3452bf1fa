#pragma once

#include <QString>
#include <chrono>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace brimvault::platform {

/// Runs a script of the program's own, a resource or a file, for the user whose home folder is `homeFolder()`, and
/// returns the list that it printed: NUL-terminated entries; what follows the last NUL is no entry.
///
/// After the timeout the script is killed with all that it has started, and what it had printed by then is the list.
/// None when the script cannot be read, fails, prints more than 64 MiB, or is stopped, which kills it at once. Blocks,
/// for about a second longer than the timeout at most; any thread but the main one.
[[nodiscard]] std::optional<std::vector<std::string>> runListScript(const QString& script,
                                                                    std::chrono::milliseconds timeout,
                                                                    const std::stop_token& stop);

}  // namespace brimvault::platform
