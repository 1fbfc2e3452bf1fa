#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>

#include "files/Result.h"

namespace brimvault::files {

enum class NodeKind : std::uint8_t { regular, directory, link, other };

/// Identifies an object of a file system; two equal identities are one object. Inode numbers are reused, so the time of
/// birth is part of it. Where the file system has none, two equal identities are one object only while it is open.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::optional<std::chrono::system_clock::time_point> born;  ///< none where the file system has none
    bool operator==(const FileIdentity&) const = default;

    /// The identity in 64 bits, to keep with each of very many items; never 0.
    [[nodiscard]] std::uint64_t digest() const;
};

/// Which object, reached through which mount.
struct NodePlace {
    FileIdentity identity;
    std::uint64_t mount = 0;  ///< 0 when the system does not tell
    bool operator==(const NodePlace&) const = default;
};

/// What the system knows of one file, folder or symbolic link; a link is not followed.
struct NodeStatus {
    FileIdentity identity;
    std::uint64_t mount = 0;  ///< the mount it was reached through; 0 when the system does not tell
    NodeKind kind = NodeKind::other;
    bool isSocket = false;        ///< then of no other kind
    std::uint64_t size = 0;       ///< logical bytes
    std::uint64_t allocated = 0;  ///< bytes on disk
    /// Names of the object. A directory has exactly one name, so 1 for every directory, whatever the file system
    /// stores there (many count a directory's subdirectories in that field).
    std::uint64_t linkCount = 0;
    /// Immutable or append-only: nobody can remove it, nor what is directly in it.
    bool immutable = false;
    std::uint32_t permissions = 0;  ///< the twelve permission bits, as POSIX numbers them
    std::uint32_t owner = 0;        ///< number of the user
    std::uint32_t group = 0;        ///< number of the group
    std::chrono::system_clock::time_point modified;
    std::chrono::system_clock::time_point accessed;
    std::chrono::system_clock::time_point changed;  ///< of the inode: its name, rights, links or contents

    [[nodiscard]] NodePlace place() const { return {identity, mount}; }
};

/// The sizes of one entry alone: on some file systems these cost less than the whole status.
struct EntrySize {
    std::uint64_t logical = 0;    ///< bytes
    std::uint64_t allocated = 0;  ///< bytes on disk
    std::uint64_t mount = 0;      ///< 0 when the system does not tell
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t linkCount = 0;  ///< names of the object; 1 for every directory, as in its status
};

/// The status of a name in an open directory; an empty name asks for the descriptor itself. Any thread.
[[nodiscard]] Result<NodeStatus> statusAt(int directory, const char* name);

/// The sizes of a name in an open directory; of a link, its own. An empty name asks for the descriptor itself. Any
/// thread.
[[nodiscard]] Result<EntrySize> sizeAt(int directory, const char* name);

/// The status at a path; links in its folders are followed, a link at its end is not. Any thread.
[[nodiscard]] Result<NodeStatus> statusOf(const std::filesystem::path& path);

/// False only where the system says that no such name exists; true for what cannot be looked at.
[[nodiscard]] bool mayExist(const std::filesystem::path& path);

}  // namespace brimvault::files
