#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>

#include "files/DirectoryHandle.h"

namespace brimvault::cleaner {

/// A folder whose contents may be removed, whoever owns them. It is looked up once and held open from then on: what is
/// put at its path later is another folder, and its inode number cannot be reused.
class PinnedFolder {
public:
    /// None where the path is no folder of that owner, or leads through a symbolic link.
    static std::optional<PinnedFolder> open(const std::filesystem::path& path, uid_t owner);

    /// Whether it is this folder, reached on the same mount.
    [[nodiscard]] bool is(const files::NodeStatus& folder) const { return folder.place() == place_; }

private:
    PinnedFolder(files::DirectoryHandle handle, const files::NodePlace& place)
        : handle_(std::move(handle)), place_(place) {}

    files::DirectoryHandle handle_;
    files::NodePlace place_;
};

}  // namespace brimvault::cleaner
