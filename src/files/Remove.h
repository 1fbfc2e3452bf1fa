#pragma once

#include <filesystem>
#include <optional>
#include <stop_token>

#include "files/Result.h"

namespace brimvault::files {

enum class RemovalEnd {
    gone,       ///< nothing is left under the name
    kept,       ///< something is left; the first failure says why
    cancelled,  ///< stopped part-way; what was not reached is as it was
};

struct [[nodiscard]] RemovalOutcome {
    RemovalEnd end = RemovalEnd::kept;
    std::optional<Failure> failure;  ///< the first one met; set exactly when `end` is `kept`
};

/// Removes a file, a link or a folder with its contents, for good.
///
/// The path is absolute, without "." or ".." and not "/"; anything else is refused with EINVAL. No link is followed, on
/// the way to the item or inside it; a link is removed itself. Nothing on another mount than the item's folder is
/// touched, nor is a mount point. It goes on after a failure, so that all that can go goes, and answers the first.
///
/// Any thread. A stop is seen before each entry.
RemovalOutcome remove(const std::filesystem::path& path, const std::stop_token& stop = {});

}  // namespace brimvault::files
