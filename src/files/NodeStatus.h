#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>

#include "files/Result.h"

namespace brimvault::files {

enum class NodeKind { regular, directory, link, other };

/// Which object of which file system a name stood for; two equal identities are one object. A number that was freed is
/// soon given to another object, which is told from the first by when it was made. Where the file system does not tell
/// that, two equal identities are one object only as long as the object is held open.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::optional<std::chrono::system_clock::time_point> born;  ///< none where the file system does not tell
    bool operator==(const FileIdentity&) const = default;
};

/// Which object, reached through which mount.
struct NodePlace {
    FileIdentity identity;
    std::uint64_t mount = 0;  ///< 0 when the system does not tell
    bool operator==(const NodePlace&) const = default;
};

/// What the system knows of one file, folder or link; a link is described itself, never what it points at.
struct NodeStatus {
    FileIdentity identity;
    std::uint64_t mount = 0;  ///< the mount it was reached through; 0 when the system does not tell
    NodeKind kind = NodeKind::other;
    std::uint64_t size = 0;       ///< logical bytes
    std::uint64_t allocated = 0;  ///< bytes on disk
    /// Names of the object. A directory has exactly one name, so 1 for every directory, whatever the file system
    /// stores there (many count a directory's subdirectories in that field).
    std::uint64_t linkCount = 0;
    bool immutable = false;         ///< locked against change and removal, by its owner or the administrator
    std::uint32_t permissions = 0;  ///< the twelve permission bits, as POSIX numbers them
    std::uint32_t owner = 0;        ///< number of the user
    std::uint32_t group = 0;        ///< number of the group
    std::chrono::system_clock::time_point modified;
    std::chrono::system_clock::time_point accessed;

    [[nodiscard]] NodePlace place() const { return {identity, mount}; }
};

/// The sizes of one file or link, and no more: some file systems give these sooner than all they know.
struct EntrySize {
    std::uint64_t logical = 0;    ///< bytes
    std::uint64_t allocated = 0;  ///< bytes on disk; 0 when they were not asked for
    std::uint64_t mount = 0;      ///< 0 when the system does not tell
};

enum class SizesAsked { logical, logicalAndAllocated };

/// The status of a name in an open directory; an empty name asks for the descriptor itself. Any thread.
[[nodiscard]] Result<NodeStatus> statusAt(int directory, const char* name);

/// The sizes of a name in an open directory; of a link, its own. Any thread.
[[nodiscard]] Result<EntrySize> sizeAt(int directory, const char* name, SizesAsked asked);

/// The status at a path; links in its folders are followed, a link at its end is not. Any thread.
[[nodiscard]] Result<NodeStatus> statusOf(const std::filesystem::path& path);

/// NO only where the system says that no such name exists; what cannot be looked at counts as there.
[[nodiscard]] bool mayExist(const std::filesystem::path& path);

}  // namespace brimvault::files
