#include "engine/ProtectedFolders.h"

#include <algorithm>
#include <initializer_list>
#include <vector>

#include "files/NodeStatus.h"
#include "platform/LibraryURLs.h"
#include "platform/System.h"

namespace brimvault::engine {

namespace {

bool isOrHolds(const files::FileIdentity& item, std::filesystem::path folder) {
    for (;; folder = folder.parent_path()) {
        const auto status = files::statusOf(folder);
        if (status && status->identity == item) {
            return true;
        }
        if (!folder.has_relative_path()) {
            return false;
        }
    }
}

}  // namespace

std::vector<std::filesystem::path> protectedFolders() {
    using platform::LibraryURLs;
    const auto library = platform::homeFolder() / "Library";
    std::vector<std::filesystem::path> folders = {library / "Logs", library / "Application Support" / "CrashReporter",
                                                  library / "Containers", platform::systemRoot() / "Library" / "Logs",
                                                  LibraryURLs::getPreferencesFolderURL()};
    for (const auto& folder :
         {LibraryURLs::getCachesFolderURL(), LibraryURLs::getDownloadsFolderURL(), LibraryURLs::getTrashFolderURL(),
          LibraryURLs::getApplicationFolderURL(), LibraryURLs::getUserApplicationFolderURL()}) {
        if (folder) {
            folders.push_back(*folder);
        }
    }
    if (const auto trash = LibraryURLs::getDesktopTrashFolderURL()) {
        folders.push_back(*trash / "files");
        folders.push_back(*trash / "info");
    }
    return folders;
}

bool isProtectedFolder(const std::filesystem::path& path) {
    const auto item = files::statusOf(path);
    if (!item || item->kind != files::NodeKind::directory) {
        return false;
    }
    const auto folders = protectedFolders();
    return std::any_of(folders.begin(), folders.end(),
                       [&](const auto& folder) { return isOrHolds(item->identity, folder); });
}

}  // namespace brimvault::engine
