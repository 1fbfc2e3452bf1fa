#pragma once

#include <cstdint>
#include <filesystem>
#include <stop_token>

#include "files/DirectoryHandle.h"

namespace brimvault::files {

/// Byte sums over a tree. A file with several names counts once for each name; a link counts as itself.
struct TreeSizes {
    std::uint64_t logical = 0;       ///< lengths of everything that is no folder
    std::uint64_t allocated = 0;     ///< bytes on disk of everything that is no folder
    std::uint64_t regularFiles = 0;  ///< lengths of regular files alone
    std::uint64_t folders = 0;       ///< what the file system states as the lengths of the folders below the top
};

/// Sums over the contents of a folder; all zero when the path is no folder, or is reached through a link. Folders that
/// cannot be read add nothing, nor do other mounts below. Any thread; a stop ends it before the next entry
/// with what was summed by then.
[[nodiscard]] TreeSizes measureContents(const std::filesystem::path& folder, const std::stop_token& stop = {});

/// The logical size in bytes of a file, a link or a folder's contents; 0 when there is nothing. Any thread.
[[nodiscard]] std::uint64_t measureItem(const std::filesystem::path& path, const std::stop_token& stop = {});

/// The same of a name in an open folder.
[[nodiscard]] std::uint64_t measureItemAt(const DirectoryHandle& folder, const char* name,
                                          const std::stop_token& stop = {});

}  // namespace brimvault::files
