#pragma once

#include <filesystem>
#include <optional>

#include "cleaner-tool/Requester.h"

namespace brimvault::cleaner {

/// Resolves those symbolic links in the path of a folder that only root can have made: /home is one on some systems.
/// None where any other link is in the path, or the path leads to nothing.
[[nodiscard]] std::optional<std::filesystem::path> withoutSystemLinks(const std::filesystem::path& path);

/// Resolves the symbolic links in the path that the requester can read, whoever has made them: no name is looked up in
/// a folder that they may not search. Ends with the first name that is missing or cannot be resolved.
[[nodiscard]] std::filesystem::path withoutVisibleLinks(const std::filesystem::path& path, const Requester& requester);

}  // namespace brimvault::cleaner
