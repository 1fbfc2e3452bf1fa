#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>

#include "files/DirectoryHandle.h"

namespace brimvault::cleaner {

/// A folder whose contents may go, whoever owns them. It is looked up once and held open from then on: what is put
/// under its name later is another folder, and its number is given to no other.
class PinnedFolder {
public:
    /// None where the path is no folder of that owner, or leads through a link.
    static std::optional<PinnedFolder> open(const std::filesystem::path& path, uid_t owner);

    /// Whether it is this folder, reached on the same mount.
    [[nodiscard]] bool is(const files::NodeStatus& folder) const { return folder.place() == place_; }

private:
    PinnedFolder(files::DirectoryHandle handle, const files::NodePlace& place)
        : handle_(std::move(handle)), place_(place) {}

    files::DirectoryHandle handle_;
    files::NodePlace place_;
};

/// The path of a folder without the links that only the administrator can have put on the way to it, as /home is one in
/// some systems. None where another link is on it, or nothing.
[[nodiscard]] std::optional<std::filesystem::path> withoutSystemLinks(const std::filesystem::path& path);

}  // namespace brimvault::cleaner
