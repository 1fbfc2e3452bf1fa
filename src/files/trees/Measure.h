#pragma once

#include <cstdint>
#include <filesystem>
#include <stop_token>

#include "files/DirectoryHandle.h"
#include "files/trees/ReclaimableSpace.h"

namespace brimvault::files {

/// Byte sums over a tree. A file with several names counts once for each name; a symbolic link counts as itself.
struct TreeSizes {
    std::uint64_t logical = 0;       ///< lengths of everything that is no folder
    std::uint64_t allocated = 0;     ///< bytes on disk of everything that is no folder
    std::uint64_t regularFiles = 0;  ///< lengths of regular files alone
    std::uint64_t folders = 0;       ///< lengths of the folders below the top, as the file system states them
};

/// An item as a list shows it, and what removing it frees.
struct MeasuredItem {
    std::uint64_t logical = 0;    ///< bytes, as `measureItem` has them
    ReclaimableSpace space = {};  ///< its folders included; settled
};

/// The calling thread measures, helped by idle threads of the pool where the tree is large. Memory is needed only for
/// the names of pending folders. Mounts below an item are left out, and so is an item that is a mount point itself. A
/// stop ends a measurement within milliseconds, with the sum so far.

/// Sums over the contents of a folder; all zero when the path is no folder, or is reached through a link. Folders that
/// cannot be read add nothing, nor do other mounts below. Any thread.
[[nodiscard]] TreeSizes measureContents(const std::filesystem::path& folder, const std::stop_token& stop = {});

/// The logical size in bytes of a file, a link or a folder's contents; 0 when there is nothing. Any thread.
[[nodiscard]] std::uint64_t measureItem(const std::filesystem::path& path, const std::stop_token& stop = {});

/// The same of a name in an open folder.
[[nodiscard]] std::uint64_t measureItemAt(const DirectoryHandle& folder, const char* name,
                                          const std::stop_token& stop = {});

/// The size with what removing it frees.
[[nodiscard]] MeasuredItem measureSpace(const std::filesystem::path& path, const std::stop_token& stop = {});
[[nodiscard]] MeasuredItem measureSpaceAt(const DirectoryHandle& folder, const char* name,
                                          const std::stop_token& stop = {});
/// The same of an entry as the listing of an open folder names it; `mount` is the one that the folder is on.
[[nodiscard]] MeasuredItem measureEntry(const DirectoryHandle& folder, const DirectoryEntry& entry, std::uint64_t mount,
                                        const std::stop_token& stop = {});

}  // namespace brimvault::files
