#pragma once

#include <filesystem>

namespace brimvault::engine {

/// Whether the path names a folder that no list of items can rightly hold: a section's own root folder, the home
/// folder, or one that holds either. Compared by what the folders are, not by how they are spelled. Any thread.
[[nodiscard]] bool isProtectedFolder(const std::filesystem::path& path);

}  // namespace brimvault::engine
