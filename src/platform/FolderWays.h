#pragma once

#include <filesystem>
#include <vector>

#include "files/NodeStatus.h"

namespace brimvault::platform {

/// Where a folder is, and in what it lies.
struct FolderWay {
    std::filesystem::path named;
    /// With every link resolved, as far as there is something; as named where that does not answer.
    std::filesystem::path resolved;
    /// From the root folder on, the folder itself the last, as far as they are there.
    std::vector<files::FileIdentity> folders;
};

/// Looks the folders up. One on a volume that does not answer is not waited for longer than a second, and not again
/// while it is silent. Any thread but the main one.
[[nodiscard]] std::vector<FolderWay> waysOf(const std::vector<std::filesystem::path>& named);

}  // namespace brimvault::platform
