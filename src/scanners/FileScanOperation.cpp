#include "scanners/FileScanOperation.h"

#include <iterator>

#include "files/DirectoryHandle.h"
#include "files/NodeStatus.h"
#include "files/trees/MeasuredFolder.h"

namespace brimvault::scanners {

void FileScanOperation::iterateFiles(const OpenFolder& folder, files::HiddenEntries hidden,
                                     const std::function<void(const std::filesystem::path&)>& call) const {
    (void)files::forEachChild(folder.handle, hidden, [&](const files::DirectoryEntry& entry) {
        if (isCancelled()) {
            return false;
        }
        call(folder.path / entry.name);
        return true;
    });
}

void FileScanOperation::withRoot(const std::filesystem::path& named, const FolderBlock& call) const {
    if (const auto* found = rootToList(named)) {
        call({*found->folder, found->place->resolved, found->place});
    }
}

void FileScanOperation::withFolderInside(const std::filesystem::path& path,
                                         const std::shared_ptr<const platform::RootPlace>& root,
                                         const FolderBlock& call) {
    if (const auto opened = files::DirectoryHandle::openForReading(path)) {
        call({*opened, path, root});
    }
}

void FileScanOperation::collectFilesIn(const OpenFolder& folder, files::HiddenEntries hidden, Addressed addressed,
                                       ScanBatches& batches, const Skipped& skipped) const {
    const auto place = engine::FoundIn::in(folder.path, folder.handle, folder.root);
    const auto sizes = [&](const char* name) {
        return skipped && skipped(name) ? files::Sizes::unwanted : files::Sizes::wanted;
    };
    (void)files::forEachMeasurable(folder.handle, hidden, stopToken(), sizes, [&](const files::MeasurableEntry& entry) {
        batches.step();
        if (entry.sizes == files::Sizes::unwanted) {
            return true;
        }
        const quint64 size = entry.findings().logical;
        if (!isCancelled()) {
            addItem({folder.path / entry.name, entry.name, addressed, size, entry.kind, folder.root, place}, batches);
        }
        return true;
    });
}

void FileScanOperation::collectFile(FoundFile found, ScanBatches& batches) const {
    batches.step();
    if (found.size == 0) {
        found.size = getFileFolderSize(found.path);
    }
    if (!isCancelled()) {  // else the size is a partial sum
        addItem(found, batches);
    }
}

void FileScanOperation::addItem(const FoundFile& found, ScanBatches& batches) const {
    const auto item = engine::FFItem::initWithName(found.name, found.size);
    using FoundPathKind = engine::FFItem::FoundPathKind;
    item->setFoundIn(found.foundIn ? found.foundIn : placeOf(found),
                     found.addressed == Addressed::byName  ? FoundPathKind::sectionFolder
                     : found.name == found.path.filename() ? FoundPathKind::folder
                                                           : FoundPathKind::wholePath);
    item->setPpbDeletable(true);
    item->setPpbChecked(found.ticked.value_or(isTickedAtFirst()));
    item->setNote(found.note);
    if (found.details) {
        item->setDetails(*found.details);
    }
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

// The folder is opened without following links. If that fails, its inode stays unknown.
std::shared_ptr<const engine::FoundIn> FileScanOperation::placeOf(const FoundFile& found) const {
    const auto folder = found.path.parent_path();
    const bool isNamedSo = found.name == found.path.filename();
    const auto path = isNamedSo ? (folder / "").native() : found.path.native();
    if (lastPlace_ == nullptr || lastPlace_->path != path || lastPlace_->root != found.root) {
        const auto opened = files::DirectoryHandle::open(folder);
        lastPlace_ = opened ? engine::FoundIn::at(path, *opened, found.root)
                            : std::make_shared<const engine::FoundIn>(engine::FoundIn{path, {}, found.root});
    }
    return lastPlace_;
}

std::filesystem::path FileScanOperation::containerName(const std::filesystem::path& inside) {
    constexpr auto fromEnd = 4;
    if (std::distance(inside.begin(), inside.end()) < fromEnd) {
        return inside.filename();
    }
    return *std::prev(inside.end(), fromEnd);
}

}  // namespace brimvault::scanners
