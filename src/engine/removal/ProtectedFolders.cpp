#include "engine/removal/ProtectedFolders.h"

#include <algorithm>
#include <iterator>

#include "platform/LibraryURLs.h"
#include "platform/SectionRoots.h"
#include "platform/System.h"

namespace brimvault::engine {

using platform::LibraryURLs;

// For a root that does not exist, the folders that would hold it are protected.
ProtectedFolders::ProtectedFolders() : locations_(platform::locateSectionRoots()) {
    const auto trash = LibraryURLs::namedDesktopTrashFolder();
    auto more = platform::locate(
        {trash / "files", trash / "info", LibraryURLs::getPreferencesFolderURL(), platform::homeFolder()});
    std::move(more.begin(), more.end(), std::back_inserter(locations_));
}

// By path too: a folder on a volume that does not answer has no inode to compare.
bool ProtectedFolders::isOneOrHoldsOne(const std::filesystem::path& path, const files::NodeStatus& item) const {
    const auto beginning = (path / "").native();
    return item.kind == files::NodeKind::directory &&
           std::any_of(locations_.begin(), locations_.end(), [&](const platform::FolderLocation& location) {
               return (location.resolved / "").native().starts_with(beginning) ||
                      std::find(location.folders.begin(), location.folders.end(), item.identity) !=
                          location.folders.end();
           });
}

std::vector<std::filesystem::path> protectedFolders() {
    const ProtectedFolders found;
    std::vector<std::filesystem::path> folders;
    std::transform(found.locations().begin(), found.locations().end(), std::back_inserter(folders),
                   [](const platform::FolderLocation& location) { return location.resolved; });
    return folders;
}

}  // namespace brimvault::engine
