#include "scanners/SDwnOperation.h"

#include <algorithm>
#include <utility>

#include "engine/model/FileManager.h"
#include "platform/LibraryURLs.h"
#include "platform/text/DisplayText.h"

namespace brimvault::scanners {

namespace {

using engine::ItemNote;
using files::NodeKind;

QString argumentOf(ItemNote note, const files::ItemFindings& found) {
    if (note == ItemNote::inUse) {
        return platform::displayText(files::programName(found.openBy));
    }
    return note == ItemNote::unfinished ? engine::FileManager::dateOf(found.changed).toUTC().toString(Qt::ISODate)
                                        : QString();
}

}  // namespace

std::optional<std::filesystem::path> SDwnOperation::getOperationRootFolderURL() const {
    const auto& found = root(platform::LibraryURLs::namedDownloadsFolder());
    return found.folder ? std::optional(found.place->resolved) : std::nullopt;
}

void SDwnOperation::initTopLevelItemsCount() {
    qint64 count = 0;
    unfinished_ = {};
    if (const auto* found = rootToList(platform::LibraryURLs::namedDownloadsFolder())) {
        (void)files::forEachChild(*found->folder, files::HiddenEntries::skip, [&](const files::DirectoryEntry& entry) {
            ++count;
            unfinished_.note(entry.name);
            return !isCancelled();
        });
        unfinished_.lookBeside(*found->folder);
    }
    setTopLevelItemsCount(count);
}

void SDwnOperation::main() {
    open_ = files::OpenFiles::now(stopToken(), files::OpenFor::writing);
    initTopLevelItemsCount();
    collectDownloadsInfo(expect(nTopLevelItemsCount()));
    closeRoots();
    sendOperationCompleted();
}

void SDwnOperation::collectDownloadsInfo(ScanBatches& batches) const {
    withRoot(platform::LibraryURLs::namedDownloadsFolder(), [&](const OpenFolder& folder) {
        auto status = folder.handle.status();
        const Listing listing{
            folder, engine::FoundIn::in(folder.path, folder.handle, folder.root), {status ? status->mount : 0, open_}};
        const auto sizes = [&](const char* name) {
            return unfinished_.isCompanion(name) ? files::Sizes::unwanted : files::Sizes::wanted;
        };
        const auto call = [&](const files::MeasurableEntry& entry) {
            batches.step();
            if (entry.sizes == files::Sizes::wanted) {
                collectEntry(listing, entry, batches);
            }
            return true;
        };
        (void)files::forEachMeasurable(folder.handle, files::HiddenEntries::skip, stopToken(), sizes, call, &open_);
    });
}

void SDwnOperation::collectEntry(const Listing& listing, const files::MeasurableEntry& entry,
                                 ScanBatches& batches) const {
    auto found = findingsOf(listing, entry);
    if (isCancelled()) {  // then the size is a partial sum
        return;
    }
    const bool isUnfinished =
        (entry.kind == NodeKind::regular || entry.kind == NodeKind::directory) && unfinished_.isUnfinished(entry.name);
    const auto note = moreSerious(isUnfinished ? ItemNote::unfinished : ItemNote::none,
                                  found.openBy != 0 ? ItemNote::inUse : ItemNote::none);
    FoundFile item{.path = listing.folder.path / entry.name,
                   .name = entry.name,
                   .addressed = Addressed::byName,
                   .size = found.logical,
                   .kind = entry.kind,
                   .root = listing.folder.root,
                   .foundIn = listing.place,
                   .note = note,
                   .space = std::move(found.space),
                   .identity = found.identity};
    if (note != ItemNote::none || found.needsAdministrator()) {
        item.details = engine::ItemDetails{.noteArgument = argumentOf(note, found),
                                           .application = {},
                                           .needsAdministrator = found.needsAdministrator(),
                                           .isUnfinished = isUnfinished,
                                           .targets = targetsOf(listing, entry.name, found.identity),
                                           .trashed = {}};
    }
    addItem(std::move(item), batches);
}

files::ItemFindings SDwnOperation::findingsOf(const Listing& listing, const files::MeasurableEntry& entry) const {
    auto all = entry.findings();
    for (const auto& companion : unfinished_.companionsOf(entry.name)) {
        const files::DirectoryEntry beside{companion.name.c_str(), companion.status.kind};
        const auto more = files::inspectEntry(listing.folder.handle, beside, listing.context, stopToken());
        all.logical += more.logical;
        all.space.add(more.space);
        all.isForeign = all.isForeign || more.isForeign;
        all.openBy = all.openBy != 0 ? all.openBy : more.openBy;
        all.changed = std::max(all.changed, more.changed);
    }
    all.space.settle();
    return all;
}

// A download may end before the user decides: then what has the later name is another file, or empty no more, and
// stays. Programs write their notes anew all the time.
std::vector<engine::ItemTargets> SDwnOperation::targetsOf(const Listing& listing, const char* name,
                                                          std::uint64_t identity) const {
    const auto& companions = unfinished_.companionsOf(name);
    if (companions.empty()) {
        return {};
    }
    engine::ItemTargets targets{listing.place, {name}, {{identity}}};
    for (const auto& companion : companions) {
        targets.names.push_back(companion.name);
        targets.expected.push_back(companion.isPlaceholder
                                       ? engine::ExpectedNode{companion.status.identity.digest(), true}
                                       : engine::ExpectedNode());
    }
    return {targets};
}

}  // namespace brimvault::scanners
