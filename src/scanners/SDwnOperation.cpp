#include "scanners/SDwnOperation.h"

#include "platform/LibraryURLs.h"

namespace brimvault::scanners {

std::optional<std::filesystem::path> SDwnOperation::getOperationRootFolderURL() const {
    const auto& found = root(platform::LibraryURLs::namedDownloadsFolder());
    return found.folder ? std::optional(found.place->resolved) : std::nullopt;
}

void SDwnOperation::main() {
    initTopLevelItemsCount();
    collectDownloadsInfo(expect(nTopLevelItemsCount()));
    closeRoots();
    sendOperationCompleted();
}

void SDwnOperation::collectDownloadsInfo(ScanBatches& batches) const {
    withRoot(platform::LibraryURLs::namedDownloadsFolder(), [&](const OpenFolder& folder) {
        collectFilesIn(folder, files::HiddenEntries::skip, Addressed::byName, batches);
    });
}

}  // namespace brimvault::scanners
