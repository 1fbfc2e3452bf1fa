#include "platform/ProgramFolders.h"

#include "platform/LibraryURLs.h"
#include "platform/System.h"

// The XDG Base Directory Specification's folders, and those of Flatpak and Snap. The root remover has a list of its
// own, on purpose: `cleaner-tool/linux/HomeFolders.cpp`.

namespace brimvault::platform {

std::vector<ProgramFolder> programFolders() {
    const auto home = homeFolder();
    std::vector<ProgramFolder> folders = {
        {home / ".config", 1, {}},      {home / ".local", 1, {}},
        {home / ".local/share", 1, {}}, {home / ".local/state", 1, {}},
        {home / ".var", 0, {}},         {home / ".var/app", 2, "tmp"},  // APPLICATION/cache/tmp
        {home / "snap", 3, {}},                                         // NAME/REVISION/.cache
        {home / ".mozilla", 0, {}},     {home / ".ssh", 0, {}},
        {home / ".gnupg", 0, {}}};
    for (const auto base : {BaseFolder::configuration, BaseFolder::data, BaseFolder::state}) {
        if (auto folder = LibraryURLs::baseFolder(base)) {
            folders.push_back({std::move(*folder), 1, {}});
        }
    }
    return folders;
}

}  // namespace brimvault::platform
