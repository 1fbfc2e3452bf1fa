#pragma once

#include <filesystem>
#include <vector>

namespace brimvault::engine {

/// The sections' own root folders and the program's settings; some may not exist. Any thread.
[[nodiscard]] std::vector<std::filesystem::path> protectedFolders();

/// Whether the path names a folder that no list of items can rightly hold: a section's own root folder, the home
/// folder, the program's settings, or one that holds any of them. Compared by what the folders are, not by how they are
/// spelled. Any thread.
[[nodiscard]] bool isProtectedFolder(const std::filesystem::path& path);

}  // namespace brimvault::engine
