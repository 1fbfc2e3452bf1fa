#pragma once

#include <filesystem>
#include <optional>

namespace brimvault::platform {

/// What the trash folders of a system look like. Answers are found from the path alone, so they hold for items that are
/// gone as well. Any thread.
class TrashFolders {
public:
    /// Whether the path lies directly in one of the user's trash folders: the home folder's ".Trash", the desktop's
    /// own, or that of a volume.
    [[nodiscard]] static bool isItemInTrash(const std::filesystem::path& path);

    /// The file in which the desktop remembers where an item of the trash came from; none for items that have none.
    /// The file itself may be missing.
    [[nodiscard]] static std::optional<std::filesystem::path> recordOfItem(const std::filesystem::path& item);
};

}  // namespace brimvault::platform
