#pragma once

#include <filesystem>
#include <vector>

#include "files/NodeStatus.h"

namespace brimvault::platform {

/// Where a folder is, and in what it lies.
struct FolderLocation {
    std::filesystem::path named;
    /// With symbolic links resolved, as far as the path exists; as named where the volume does not answer.
    std::filesystem::path resolved;
    /// Its ancestors that exist, from "/" on, and at the end the folder itself, if it exists.
    std::vector<files::FileIdentity> folders;
};

/// Whether `inner` is the folder or lies in it, by their paths alone; both normal, without symbolic links.
[[nodiscard]] bool holds(const std::filesystem::path& folder, const std::filesystem::path& inner);

/// Looks the folders up. The timeout is a second for each; a folder on a volume that does not answer is not looked up
/// again until it does. Any thread but the main one.
[[nodiscard]] std::vector<FolderLocation> locate(const std::vector<std::filesystem::path>& named);

}  // namespace brimvault::platform
