#include "engine/ProtectedFolders.h"

#include <initializer_list>
#include <optional>

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

bool isProtectedFolder(const std::filesystem::path& path) {
    const auto item = files::statusOf(path);
    if (!item || item->kind != files::NodeKind::directory) {
        return false;
    }
    using platform::LibraryURLs;
    for (const auto& root : {std::optional(platform::homeFolder()), LibraryURLs::getCachesFolderURL(),
                             LibraryURLs::getDownloadsFolderURL(), LibraryURLs::getTrashFolderURL(),
                             std::optional(LibraryURLs::getPreferencesFolderURL())}) {
        if (root && isOrHolds(item->identity, *root)) {
            return true;
        }
    }
    return false;
}

}  // namespace brimvault::engine
