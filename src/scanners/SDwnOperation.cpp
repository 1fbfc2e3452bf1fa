#include "scanners/SDwnOperation.h"

#include "platform/LibraryURLs.h"

namespace brimvault::scanners {

std::optional<std::filesystem::path> SDwnOperation::getOperationRootFolderURL() const {
    return platform::LibraryURLs::getDownloadsFolderURL();
}

void SDwnOperation::main() {
    initTopLevelItemsCount();
    collectDownloadsInfo(expect(nTopLevelItemsCount()));
    sendOperationCompleted();
}

void SDwnOperation::collectDownloadsInfo(ScanBatches& batches) const {
    if (const auto root = getOperationRootFolderURL()) {
        collectFilesIn(*root, files::HiddenEntries::skip, Addressed::byName, batches);
    }
}

}  // namespace brimvault::scanners
