#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "files/NodeStatus.h"

namespace brimvault::files {

/// An object of a file system, as a walk comes to it by one of its names.
struct NamedNode {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t allocated = 0;  ///< bytes on disk
    std::uint32_t names = 1;      ///< by which it was seen
    std::uint32_t allNames = 1;   ///< that it has in the file system

    [[nodiscard]] static NamedNode of(const NodeStatus& status) {
        return {status.identity.device, status.identity.inode, status.allocated, 1, counted(status.linkCount)};
    }
    [[nodiscard]] static NamedNode of(const EntrySize& size) {
        return {size.device, size.inode, size.allocated, 1, counted(size.linkCount)};
    }
    [[nodiscard]] bool isSameAs(const NamedNode& other) const { return inode == other.inode && device == other.device; }
    [[nodiscard]] bool isBefore(const NamedNode& other) const {
        return device != other.device ? device < other.device : inode < other.inode;
    }

private:
    [[nodiscard]] static std::uint32_t counted(std::uint64_t links) {
        return static_cast<std::uint32_t>(std::min<std::uint64_t>(links, std::numeric_limits<std::uint32_t>::max()));
    }
};

/// What removing the names that were seen gives back: the bytes on disk of what has no other name. A file with several
/// names counts once, and only if all of them were seen. Extents that files share by other means (copies on btrfs or
/// XFS, snapshots) are not told apart.
struct ReclaimableSpace {
    std::uint64_t bytes = 0;
    /// Files with several names. Once settled: each once, in order, and only those that have further names.
    std::vector<NamedNode> shared = {};

    void add(const NamedNode& node) {
        if (node.names >= node.allNames) {
            bytes += node.allocated;
        } else if (node.allocated > 0) {
            shared.push_back(node);
        }
    }
    void add(const ReclaimableSpace& more);
    /// To be called after the last name.
    void settle();
};

}  // namespace brimvault::files
