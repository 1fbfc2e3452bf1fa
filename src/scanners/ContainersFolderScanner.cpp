#include "scanners/ContainersFolderScanner.h"

#include "files/NodeStatus.h"

namespace brimvault::scanners {

// Only entries with one hard link count as containers. An entry that cannot be read is left out.
ContainersFolderScanner::Folders ContainersFolderScanner::listContainerFolders() {
    const auto root = platform::openSectionRoot(containersFolderURL_);
    place_ = root.place;
    Folders containers;
    if (!root.folder) {
        return containers;
    }
    const auto keep = [&](const files::DirectoryEntry& entry) {
        const auto status = files::statusAt(root.folder->descriptor(), entry.name);
        if (status && status->linkCount == 1) {
            containers.push_back(place_->resolved / entry.name);
        }
        return true;
    };
    if (files::forEachChild(*root.folder, files::HiddenEntries::skip, keep) != 0) {
        return {};
    }
    return containers;
}

void ContainersFolderScanner::scanContainers() {
    for (const auto& container : listContainerFolders()) {
        caches_.push_back(container / "Data" / "Library" / "Caches");
        logs_.push_back(container / "Data" / "Library" / "Logs");
    }
    isLoaded_ = true;
}

void ContainersFolderScanner::resetResults() {
    logs_.clear();
    caches_.clear();
    isLoaded_ = false;
}

}  // namespace brimvault::scanners
