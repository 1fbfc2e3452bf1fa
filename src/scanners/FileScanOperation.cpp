#include "scanners/FileScanOperation.h"

#include <iterator>

#include "files/DirectoryHandle.h"
#include "files/MeasuredFolder.h"
#include "files/NodeStatus.h"

namespace brimvault::scanners {

void FileScanOperation::iterateFiles(const std::filesystem::path& folder, files::HiddenEntries hidden,
                                     const std::function<void(const std::filesystem::path&)>& call) const {
    (void)files::forEachChild(folder, hidden, [&](const files::DirectoryEntry& entry) {
        if (isCancelled()) {
            return false;
        }
        call(folder / entry.name);
        return true;
    });
}

void FileScanOperation::collectFilesIn(const std::filesystem::path& folder, files::HiddenEntries hidden,
                                       Addressed addressed, ScanBatches& batches, const Skipped& skipped) const {
    const auto sizes = [&](const char* name) {
        return skipped && skipped(name) ? files::Sizes::unwanted : files::Sizes::wanted;
    };
    (void)files::forEachMeasurable(folder, hidden, stopToken(), sizes, [&](const files::MeasurableEntry& entry) {
        batches.step();
        if (entry.sizes == files::Sizes::unwanted) {
            return true;
        }
        const quint64 size = entry.size();
        if (!isCancelled()) {
            addItem({folder / entry.name, entry.name, addressed, size, entry.kind}, batches);
        }
        return true;
    });
}

void FileScanOperation::collectFile(FoundFile found, ScanBatches& batches) const {
    batches.step();
    if (found.size == 0) {
        found.size = getFileFolderSize(found.path);
    }
    if (!isCancelled()) {  // else measured in part: not what the item holds
        addItem(found, batches);
    }
}

void FileScanOperation::addItem(const FoundFile& found, ScanBatches& batches) const {
    const auto item = engine::FFItem::initWithName(found.name, found.size);
    if (found.addressed == Addressed::byPath) {
        item->setPfpath(found.path);
    }
    item->setPpbDeletable(true);
    item->setPpbChecked(isTickedAtFirst());
    if (found.kind) {
        item->setIcon({*found.kind});
    } else if (const auto status = files::statusOf(found.path)) {
        item->setIcon({status->kind});
    }
    batches.add(item);
}

void FileScanOperation::sendOperationCompleted() const {
    batches_.value_or(ScanBatches(section(), 0)).sendOperationCompleted();
}

std::filesystem::path FileScanOperation::containerName(const std::filesystem::path& inside) {
    constexpr auto fromEnd = 4;
    if (std::distance(inside.begin(), inside.end()) < fromEnd) {
        return inside.filename();
    }
    return *std::prev(inside.end(), fromEnd);
}

}  // namespace brimvault::scanners
