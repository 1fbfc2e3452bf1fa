#include "platform/TrashFolders.h"

#include <unistd.h>

#include <cstdint>
#include <string>

#include "files/NodeStatus.h"
#include "platform/LibraryURLs.h"

// The rules of freedesktop.org for the Trash, version 1.0: items in "files", for each a record "info/NAME.trashinfo".
// resources/TrashScan finds these folders.

namespace brimvault::platform {

namespace {

namespace fs = std::filesystem;

bool isTrash(const fs::path& folder) {
    const auto user = std::to_string(::getuid());
    return folder == LibraryURLs::getDesktopTrashFolderURL() || folder.filename() == ".Trash-" + user ||
           (folder.filename() == user && folder.parent_path().filename() == ".Trash");
}

// The trash folder whose items lie in the folder.
std::optional<fs::path> trashOf(const fs::path& folder) {
    const bool plain = folder.is_absolute() && folder == folder.lexically_normal();
    return plain && folder.filename() == "files" && isTrash(folder.parent_path()) ? std::optional(folder.parent_path())
                                                                                  : std::nullopt;
}

}  // namespace

bool TrashFolders::holdsItems(const fs::path& folder) {
    return trashOf(folder) || folder == LibraryURLs::getTrashFolderURL();
}

bool TrashFolders::isSharedByUsers(const fs::path& folder) {
    constexpr std::uint32_t sticky = 01000;
    const auto status = files::statusOf(folder);
    return status && (status->permissions & sticky) != 0;
}

bool TrashFolders::isUsers(const fs::path& name) {
    return name.native().find_first_not_of("0123456789") == std::string::npos;
}

std::optional<fs::path> TrashFolders::recordOfItem(const fs::path& item) {
    const auto trash = item.has_filename() ? trashOf(item.parent_path()) : std::nullopt;
    return trash ? std::optional(*trash / "info" / (item.filename().native() + ".trashinfo")) : std::nullopt;
}

}  // namespace brimvault::platform
