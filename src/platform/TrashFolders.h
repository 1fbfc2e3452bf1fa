#pragma once

#include <filesystem>
#include <optional>

namespace brimvault::platform {

/// The layout of the trash folders of a system. Any thread.
class TrashFolders {
public:
    /// Whether the entries of a folder are items of the user's trash: the home folder's ".Trash", or the folder "files"
    /// in the desktop's trash folder or in that of a volume. Decided by the path alone; nothing need be at it.
    [[nodiscard]] static bool holdsItems(const std::filesystem::path& folder);

    /// Whether the folder may be a volume's ".Trash", in which each user has a trash folder named by the user ID; such
    /// a folder is no item.
    [[nodiscard]] static bool isSharedByUsers(const std::filesystem::path& folder);
    [[nodiscard]] static bool isUsers(const std::filesystem::path& name);

    /// The desktop's record of where an item of the trash came from (.trashinfo); none for folders without such
    /// records. The file itself may be missing.
    [[nodiscard]] static std::optional<std::filesystem::path> recordOfItem(const std::filesystem::path& item);
};

}  // namespace brimvault::platform
