#include "scanners/SChOperation.h"

#include <iterator>

#include "files/NodeStatus.h"
#include "platform/LibraryURLs.h"

namespace brimvault::scanners {

namespace {

// ".../Containers/com.example.app/Data/Library/Caches" is listed under the application's identifier.
std::filesystem::path containerName(const std::filesystem::path& caches) {
    constexpr auto fromEnd = 4;
    if (std::distance(caches.begin(), caches.end()) < fromEnd) {
        return caches.filename();
    }
    return *std::prev(caches.end(), fromEnd);
}

}  // namespace

std::optional<std::filesystem::path> SChOperation::getOperationRootFolderURL() const {
    return platform::LibraryURLs::getCachesFolderURL();
}

void SChOperation::initTopLevelItemsCount() {
    SBaseOperation::initTopLevelItemsCount();
    setTopLevelItemsCount(nTopLevelItemsCount() + static_cast<qint64>(containers_.caches().size()));
}

void SChOperation::main() {
    initTopLevelItemsCount();
    ScanBatches batches(section(), nTopLevelItemsCount());
    collectCachesInfo(batches);
    batches.sendOperationCompleted();
}

void SChOperation::collectCachesInfo(ScanBatches& batches) const {
    if (const auto root = getOperationRootFolderURL()) {
        // A folder that cannot be read, or not to its end, gives what it gave.
        (void)files::forEachChild(*root, files::HiddenEntries::skip, [&](const files::DirectoryEntry& entry) {
            if (isCancelled()) {
                return false;
            }
            collectItem(*root / entry.name, entry.name, batches);
            return true;
        });
    }
    for (const auto& caches : containers_.caches()) {
        if (isCancelled()) {
            return;
        }
        collectItem(caches, containerName(caches), batches);
    }
}

void SChOperation::collectItem(const std::filesystem::path& path, const std::filesystem::path& name,
                               ScanBatches& batches) const {
    batches.step();
    const quint64 size = getFileFolderSize(path);
    if (isCancelled()) {
        return;  // measured in part: not what the item holds
    }
    const auto item = engine::FFItem::initWithName(name, size);
    item->setPfpath(path);
    item->setPpbDeletable(true);
    if (const auto status = files::statusOf(path)) {
        item->setIcon({status->kind});
    }
    batches.add(item);
}

}  // namespace brimvault::scanners
