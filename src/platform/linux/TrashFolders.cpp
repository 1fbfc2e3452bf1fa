#include "platform/TrashFolders.h"

#include <unistd.h>

#include <string>

#include "platform/LibraryURLs.h"

// The layout is that of the freedesktop.org Trash specification 1.0: items in "files", and for each a record
// "info/NAME.trashinfo". resources/TrashScan says where such folders lie.

namespace brimvault::platform {

namespace {

namespace fs = std::filesystem;

bool isTrash(const fs::path& folder) {
    const auto user = std::to_string(::getuid());
    return folder == LibraryURLs::getDesktopTrashFolderURL() || folder.filename() == ".Trash-" + user ||
           (folder.filename() == user && folder.parent_path().filename() == ".Trash");
}

bool isPlainItem(const fs::path& path) {
    return path.is_absolute() && path.has_filename() && path == path.lexically_normal();
}

// The trash folder in whose "files" the item lies.
std::optional<fs::path> trashOf(const fs::path& item) {
    const auto files = item.parent_path();
    if (!isPlainItem(item) || files.filename() != "files" || !isTrash(files.parent_path())) {
        return std::nullopt;
    }
    return files.parent_path();
}

}  // namespace

bool TrashFolders::isItemInTrash(const fs::path& path) {
    return trashOf(path) || (isPlainItem(path) && path.parent_path() == LibraryURLs::getTrashFolderURL());
}

std::optional<fs::path> TrashFolders::recordOfItem(const fs::path& item) {
    const auto trash = trashOf(item);
    return trash ? std::optional(*trash / "info" / (item.filename().native() + ".trashinfo")) : std::nullopt;
}

}  // namespace brimvault::platform
