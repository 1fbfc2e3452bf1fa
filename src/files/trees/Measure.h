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

/// A large tree is measured by the calling thread and by those of the pool that have nothing else to do, a small one
/// where the caller stands. What is seen costs no memory but the names of the folders that are still to be visited.
/// No measurement leaves the file system that the item itself is on, through no mount below it and not by being one. A
/// stop ends it within milliseconds, with what was summed by then.

/// Sums over the contents of a folder; all zero when the path is no folder, or is reached through a link. Folders that
/// cannot be read add nothing, nor do other mounts below. Any thread.
[[nodiscard]] TreeSizes measureContents(const std::filesystem::path& folder, const std::stop_token& stop = {});

/// The logical size in bytes of a file, a link or a folder's contents; 0 when there is nothing. Any thread.
[[nodiscard]] std::uint64_t measureItem(const std::filesystem::path& path, const std::stop_token& stop = {});

/// The same of a name in an open folder.
[[nodiscard]] std::uint64_t measureItemAt(const DirectoryHandle& folder, const char* name,
                                          const std::stop_token& stop = {});

/// The same of an entry as the listing of an open folder names it; `mount` is the one that the folder is on.
[[nodiscard]] std::uint64_t measureEntry(const DirectoryHandle& folder, const DirectoryEntry& entry,
                                         std::uint64_t mount, const std::stop_token& stop = {});

}  // namespace brimvault::files
