#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace brimvault::platform {

/// The layout of the trash folders of a system. Any thread.
class TrashFolders {
public:
    /// Whether the entries of a folder are items of the user's trash: the home folder's ".Trash", or the folder "files"
    /// or "expunged" in the desktop's trash folder, in that of a volume or in that of a sandboxed program. Decided by
    /// the path alone; nothing need be at it.
    [[nodiscard]] static bool holdsItems(const std::filesystem::path& folder);
    /// Whether these are leftovers of an emptied trash ("expunged"): what the desktop moves there it deletes at once.
    [[nodiscard]] static bool holdsLeftovers(const std::filesystem::path& folder);
    /// Whether it is one of the folders of which a desktop's trash consists. By the path alone.
    [[nodiscard]] static bool isPartOfTrash(const std::filesystem::path& folder);
    /// The folder to which relative paths in a trash folder's records refer: of a volume's its top; empty for others.
    [[nodiscard]] static std::filesystem::path topOf(const std::filesystem::path& trash);

    /// Whether the folder may be a volume's ".Trash", in which each user has a trash folder named by the user ID; such
    /// a folder is no item.
    [[nodiscard]] static bool isSharedByUsers(const std::filesystem::path& folder);
    [[nodiscard]] static bool isUsers(const std::filesystem::path& name);

    /// The desktop's record of where an item of the trash came from (.trashinfo); none for folders without such
    /// records. The file itself may be missing.
    [[nodiscard]] static std::optional<std::filesystem::path> recordOfItem(const std::filesystem::path& item);
    static constexpr std::string_view recordEnding = ".trashinfo";
    /// The name that a record of the item has.
    [[nodiscard]] static std::string recordName(const std::filesystem::path& item);
};

}  // namespace brimvault::platform
