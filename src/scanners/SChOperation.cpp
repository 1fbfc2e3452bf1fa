#include "scanners/SChOperation.h"

#include "platform/LibraryURLs.h"

namespace brimvault::scanners {

std::optional<std::filesystem::path> SChOperation::getOperationRootFolderURL() const {
    return platform::LibraryURLs::getCachesFolderURL();
}

void SChOperation::initTopLevelItemsCount() {
    SBaseOperation::initTopLevelItemsCount();
    setTopLevelItemsCount(nTopLevelItemsCount() + static_cast<qint64>(containers_.caches().size()));
}

void SChOperation::main() {
    initTopLevelItemsCount();
    collectCachesInfo(expect(nTopLevelItemsCount()));
    sendOperationCompleted();
}

void SChOperation::collectCachesInfo(ScanBatches& batches) const {
    if (const auto root = getOperationRootFolderURL()) {
        collectFilesIn(*root, files::HiddenEntries::skip, Addressed::byPath, batches);
    }
    for (const auto& caches : containers_.caches()) {
        if (isCancelled()) {
            return;
        }
        collectFile({.path = caches, .name = containerName(caches)}, batches);
    }
}

}  // namespace brimvault::scanners
