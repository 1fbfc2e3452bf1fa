#include "scanners/FileScanOperation.h"

#include <iterator>
#include <utility>

#include "files/DirectoryHandle.h"
#include "files/NodeStatus.h"
#include "files/trees/Measure.h"
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
        auto found = entry.findings();
        if (!isCancelled()) {
            addItem({.path = folder.path / entry.name,
                     .name = entry.name,
                     .addressed = addressed,
                     .size = found.logical,
                     .kind = entry.kind,
                     .root = folder.root,
                     .foundIn = place,
                     .space = std::move(found.space)},
                    batches);
        }
        return true;
    });
}

void FileScanOperation::collectFile(FoundFile found, ScanBatches& batches) const {
    batches.step();
    if (found.size == 0) {
        auto measured = files::measureSpace(found.path, stopToken());
        found.size = measured.logical;
        found.space = std::move(measured.space);
    }
    if (!isCancelled()) {  // else the size is a partial sum
        addItem(std::move(found), batches);
    }
}

void FileScanOperation::addItem(FoundFile found, ScanBatches& batches) const {
    const auto item = engine::FFItem::initWithName(found.name, found.size);
    using FoundPathKind = engine::FFItem::FoundPathKind;
    item->setFoundIn(found.foundIn ? found.foundIn : placeOf(found),
                     found.addressed == Addressed::byName  ? FoundPathKind::sectionFolder
                     : found.name == found.path.filename() ? FoundPathKind::folder
                                                           : FoundPathKind::wholePath);
    item->setPpbDeletable(found.isDeletable);
    item->setPpbChecked(found.isDeletable && found.ticked.value_or(isTickedAtFirst()));
    item->setNote(found.note);
    item->setIdentity(found.identity);
    if (found.details) {
        item->setDetails(std::move(*found.details));
    }
    if (found.kind) {
        item->setIcon({*found.kind});
    } else if (const auto status = files::statusOf(found.path)) {
        item->setIcon({status->kind});
        if (!found.space && status->kind != files::NodeKind::directory) {
            found.space.emplace().add(files::NamedNode::of(*status));
        }
    }
    if (found.space) {
        item->setSpace(std::move(*found.space));
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
