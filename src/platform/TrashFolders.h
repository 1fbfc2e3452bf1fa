#pragma once

#include <filesystem>
#include <optional>

namespace brimvault::platform {

/// What the trash folders of a system look like. Any thread.
class TrashFolders {
public:
    /// Whether a folder is one whose entries are items of the user's trash: the home folder's ".Trash", or the one for
    /// items in the desktop's own trash folder or in that of a volume.
    /// Found from the path, whether there is anything at it or not.
    [[nodiscard]] static bool holdsItems(const std::filesystem::path& folder);

    /// Whether the folder may be one in which each user of a volume has a trash folder; by that name such a one is no
    /// item.
    [[nodiscard]] static bool isSharedByUsers(const std::filesystem::path& folder);
    [[nodiscard]] static bool isUsers(const std::filesystem::path& name);

    /// The file in which the desktop remembers where an item of the trash came from; none for items that have none.
    /// The file itself may be missing.
    [[nodiscard]] static std::optional<std::filesystem::path> recordOfItem(const std::filesystem::path& item);
};

}  // namespace brimvault::platform
