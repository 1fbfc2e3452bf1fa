#include "scanners/SChOperation.h"

#include "platform/LibraryURLs.h"

namespace brimvault::scanners {

std::optional<std::filesystem::path> SChOperation::getOperationRootFolderURL() const {
    const auto& found = root(platform::LibraryURLs::namedCachesFolder());
    return found.folder ? std::optional(found.place->resolved) : std::nullopt;
}

void SChOperation::initTopLevelItemsCount() {
    SBaseOperation::initTopLevelItemsCount();
    setTopLevelItemsCount(nTopLevelItemsCount() + static_cast<qint64>(containers_.caches().size()));
}

void SChOperation::main() {
    initTopLevelItemsCount();
    collectCachesInfo(expect(nTopLevelItemsCount()));
    closeRoots({containers_.place()});
    sendOperationCompleted();
}

void SChOperation::collectCachesInfo(ScanBatches& batches) const {
    withRoot(platform::LibraryURLs::namedCachesFolder(), [&](const OpenFolder& folder) {
        collectFilesIn(folder, files::HiddenEntries::skip, Addressed::byPath, batches);
    });
    const auto place = containers_.place();
    for (const auto& caches : containers_.caches()) {
        if (isCancelled()) {
            return;
        }
        collectFile({.path = caches, .name = containerName(caches), .root = place}, batches);
    }
}

}  // namespace brimvault::scanners
