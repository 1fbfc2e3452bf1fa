#include "platform/ProgramFolders.h"

#include "platform/LibraryURLs.h"
#include "platform/System.h"

// The base directories (XDG Base Directory, freedesktop.org), and the folders of Flatpak and Snap. The root remover has
// a list of its own, on purpose: `cleaner-tool/linux/HomeFolders.cpp`.

namespace brimvault::platform {

std::vector<ProgramFolder> programFolders() {
    const auto home = homeFolder();
    constexpr bool isPrivate = true;
    std::vector<ProgramFolder> folders = {
        {home / ".config", 1, {}, !isPrivate},      {home / ".local", 1, {}, !isPrivate},
        {home / ".local/share", 1, {}, !isPrivate}, {home / ".local/state", 1, {}, !isPrivate},
        {home / ".var", 0, {}, isPrivate},          {home / ".var/app", 2, "tmp", isPrivate},  // APPLICATION/cache/tmp
        {home / "snap", 3, {}, isPrivate},                                                     // NAME/REVISION/.cache
        {home / ".m2", 0, {}, isPrivate},           {home / ".mozilla", 0, {}, isPrivate},
        {home / ".ssh", 0, {}, isPrivate},          {home / ".gnupg", 0, {}, isPrivate}};
    for (const auto base : {BaseFolder::configuration, BaseFolder::data, BaseFolder::state}) {
        if (auto folder = LibraryURLs::baseFolder(base)) {
            folders.push_back({std::move(*folder), 1, {}, !isPrivate});
        }
    }
    return folders;
}

}  // namespace brimvault::platform
