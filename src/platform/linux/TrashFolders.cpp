#include "platform/TrashFolders.h"

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "files/NodeStatus.h"
#include "platform/LibraryURLs.h"
#include "platform/System.h"

// The rules of freedesktop.org for the Trash, version 1.0: items in "files", for each a record "info/NAME.trashinfo".
// What is being deleted is moved to "expunged" first. resources/TrashScan finds these folders.

namespace brimvault::platform {

namespace {

namespace fs = std::filesystem;

// The user's own at the top of a volume.
bool isOwnOfVolume(const fs::path& folder) { return folder.filename() == ".Trash-" + std::to_string(::getuid()); }

// The user's own in the folder that the users of a volume share.
bool isInShared(const fs::path& folder) {
    return folder.filename() == std::to_string(::getuid()) && folder.parent_path().filename() == ".Trash";
}

// Whether the names match one by one; "*" stands for any.
bool matches(const fs::path& path, std::initializer_list<std::string_view> names) {
    return std::equal(path.begin(), path.end(), names.begin(), names.end(),
                      [](const fs::path& name, auto pattern) { return pattern == "*" || name.native() == pattern; });
}

// A program in a sandbox has folders for its data of its own.
bool isOfSandbox(const fs::path& folder) {
    const auto home = homeFolder().native() + "/";
    if (folder.filename() != "Trash" || !folder.native().starts_with(home)) {
        return false;
    }
    const fs::path inHome = folder.native().substr(home.size());
    return matches(inHome, {"snap", "*", "*", ".local", "share", "Trash"}) ||
           matches(inHome, {".var", "app", "*", "data", "Trash"}) ||
           matches(inHome, {".var", "app", "*", ".local", "share", "Trash"});
}

bool isTrash(const fs::path& folder) {
    return folder == LibraryURLs::getDesktopTrashFolderURL() || isOwnOfVolume(folder) || isInShared(folder) ||
           isOfSandbox(folder);
}

// The trash folder of which the folder is a part of that name.
std::optional<fs::path> trashOf(const fs::path& folder, const char* part) {
    const bool plain = folder.is_absolute() && folder == folder.lexically_normal();
    return plain && folder.filename() == part && isTrash(folder.parent_path()) ? std::optional(folder.parent_path())
                                                                               : std::nullopt;
}

}  // namespace

bool TrashFolders::holdsItems(const fs::path& folder) {
    return trashOf(folder, "files") || holdsLeftovers(folder) || folder == LibraryURLs::getTrashFolderURL();
}

bool TrashFolders::holdsLeftovers(const fs::path& folder) { return trashOf(folder, "expunged").has_value(); }

bool TrashFolders::isPartOfTrash(const fs::path& folder) {
    return trashOf(folder, "files") || trashOf(folder, "info") || trashOf(folder, "expunged");
}

fs::path TrashFolders::topOf(const fs::path& trash) {
    return isOwnOfVolume(trash) ? trash.parent_path()
           : isInShared(trash)  ? trash.parent_path().parent_path()
                                : fs::path();
}

bool TrashFolders::isSharedByUsers(const fs::path& folder) {
    constexpr std::uint32_t sticky = 01000;
    const auto status = files::statusOf(folder);
    return status && (status->permissions & sticky) != 0;
}

bool TrashFolders::isUsers(const fs::path& name) {
    return name.native().find_first_not_of("0123456789") == std::string::npos;
}

std::string TrashFolders::recordName(const fs::path& item) {
    return item.filename().native() + std::string(recordEnding);
}

std::optional<fs::path> TrashFolders::recordOfItem(const fs::path& item) {
    const auto trash = item.has_filename() ? trashOf(item.parent_path(), "files") : std::nullopt;
    return trash ? std::optional(*trash / "info" / recordName(item)) : std::nullopt;
}

}  // namespace brimvault::platform
