#include "scanners/SChOperation.h"

#include <system_error>
#include <utility>

#include "engine/model/FileSize.h"
#include "platform/LibraryURLs.h"
#include "platform/System.h"
#include "platform/text/DisplayText.h"
#include "scanners/places/PlacePattern.h"
#include "scanners/places/RowContents.h"
#include "scanners/places/RowNames.h"

namespace brimvault::scanners {

namespace {

using engine::ItemNote;

// What stands in the note's place of the sentence.
QString argumentOf(ItemNote note, const files::ItemFindings& found) {
    switch (note) {
        case ItemNote::download:
            return engine::FileSize::formatMemoryStringDot1(found.logical);
        case ItemNote::shared:
            return engine::FileSize::formatMemoryStringDot1(found.space.bytes);
        case ItemNote::inUse:
            return found.openBy == 0 ? QString() : platform::displayText(files::programName(found.openBy));
        default:
            return {};
    }
}

std::filesystem::path resolved(const std::filesystem::path& path) {
    std::error_code unresolved;
    auto real = std::filesystem::canonical(path, unresolved);
    return unresolved ? path : real;
}

// A browser keeps its caches under the names of its profiles' folders.
platform::ProfileUse useOfBrowser(const PlaceRunning& kind, const std::filesystem::path& name,
                                  const std::stop_token& stop) {
    const auto settings = platform::LibraryURLs::baseFolder(platform::BaseFolder::configuration);
    if (!(kind.mozilla || kind.chromium) || !settings) {
        return {};
    }
    const auto folder = resolved(kind.mozilla ? platform::homeFolder() / ".mozilla" / "firefox" : *settings / name);
    auto use = kind.mozilla ? platform::ProfileUse{} : platform::useOfProfile(folder);
    if (const auto opened = files::DirectoryHandle::openForReading(folder)) {
        forEachFitting(*opened, "*", stop, [&](const PlaceMatch& match) {
            if (!use.isUsed && match.kind == files::NodeKind::directory) {
                use = kind.mozilla ? platform::useOfMozillaProfile(folder / match.path)
                                   : platform::useOfProfile(folder / match.path);
            }
        });
    }
    return use;
}

}  // namespace

std::optional<std::filesystem::path> SChOperation::getOperationRootFolderURL() const {
    const auto& found = root(platform::LibraryURLs::namedCachesFolder());
    return found.folder ? std::optional(found.place->resolved) : std::nullopt;
}

void SChOperation::initTopLevelItemsCount() {
    qint64 count = static_cast<qint64>(containers_.caches().size());
    for (const auto& [named, hidden] : folders()) {
        if (const auto* found = rootToList(named)) {
            (void)files::forEachChild(*found->folder, hidden, [&](const files::DirectoryEntry&) {
                ++count;
                return !isCancelled();
            });
        }
    }
    setTopLevelItemsCount(count + (places_ ? static_cast<qint64>(places_->rows().size()) : 0));
}

void SChOperation::main() {
    open_ = files::OpenFiles::now(stopToken());
    places_.emplace(cachesRules(), stopToken());
    initTopLevelItemsCount();
    collectCachesInfo(expect(nTopLevelItemsCount()));
    closeRoots({containers_.place()});
    sendOperationCompleted();
}

// The desktop's folder comes first: where another is the same one, the rules hold for it.
std::vector<SChOperation::CachesFolder> SChOperation::folders() {
    std::vector<CachesFolder> all;
    const auto desktop = platform::LibraryURLs::baseFolder(platform::BaseFolder::cache);
    if (desktop) {
        all.push_back({*desktop, files::HiddenEntries::include});
    }
    for (auto& named : platform::LibraryURLs::namedCachesFolders()) {
        if (named != desktop) {
            all.push_back({std::move(named), files::HiddenEntries::skip});
        }
    }
    return all;
}

void SChOperation::collectCachesInfo(ScanBatches& batches) {
    for (const auto& [named, hidden] : folders()) {
        const bool isDesktops = hidden == files::HiddenEntries::include;
        withRoot(named, [&, entries = hidden](const OpenFolder& folder) {
            if (const auto status = folder.handle.status()) {
                places_->leaveOut(status->place());
            }
            if (isDesktops) {
                collectByRules(folder, batches);
            } else {
                collectFilesIn(folder, entries, Addressed::byPath, batches);
            }
        });
    }
    const auto place = containers_.place();
    for (const auto& caches : containers_.caches()) {
        if (isCancelled()) {
            return;
        }
        collectFile({.path = caches, .name = containerName(caches), .root = place}, batches);
    }
    for (const auto& row : places_->rows()) {
        if (isCancelled()) {
            return;
        }
        collectRow(row, batches);
    }
}

void SChOperation::collectByRules(const OpenFolder& folder, ScanBatches& batches) {
    const bool isAnyPlaceInside = places_->isAnyIn(folder.path);
    std::shared_ptr<const engine::FoundIn> place;  // which the entries of one folder share
    const auto call = [&](const CacheNames::Entry& entry) {
        batches.step();
        if (entry.holder.empty() && place == nullptr) {
            place = engine::FoundIn::in(folder.path, folder.handle, folder.root);
        }
        const auto inner = isAnyPlaceInside ? places_->take(entry.folderPath / entry.name) : std::nullopt;
        const bool isInnerStricter = inner && inner->answer > entry.judgement.answer;
        const auto judgement = isInnerStricter ? Judgement{inner->rule, inner->answer, inner->note} : entry.judgement;
        collectEntry(entry, judgement, entry.holder.empty() ? place : nullptr, folder.root, batches);
    };
    names_.forEachEntry(
        folder.handle, folder.path, open_, stopToken(), [](auto) { return false; }, call);
}

void SChOperation::collectEntry(const CacheNames::Entry& entry, const Judgement& judgement,
                                const std::shared_ptr<const engine::FoundIn>& place,
                                const std::shared_ptr<const platform::RootPlace>& root, ScanBatches& batches) {
    const auto path = entry.folderPath / entry.name;
    auto& found = entry.found;
    const auto use = judgement.rule == nullptr ? platform::ProfileUse()
                                               : useOfBrowser(judgement.rule->running, entry.name, stopToken());
    found.openBy = use.isUsed ? use.program.value_or(found.openBy) : found.openBy;
    const auto note = moreSerious(judgement.note, use.isUsed ? ItemNote::inUse : ItemNote::none);
    FoundFile item{.path = path,
                   .name = entry.name,
                   .size = found.logical,
                   .kind = entry.kind,
                   .root = root,
                   .foundIn = place,
                   .ticked = !use.isUsed && judgement.answer == PlaceAnswer::ticked,
                   .note = note};
    const auto name = nameOf(entry, judgement.rule, applications_);
    if (name.title != entry.name) {
        item.name = name.title;
        item.foundIn = engine::FoundIn::at(path, entry.folder, root);
    }
    if (judgement.rule != nullptr || note != ItemNote::none || found.needsAdministrator()) {
        item.details = engine::ItemDetails{.rule = judgement.rule == nullptr ? "" : judgement.rule->id,
                                           .noteArgument = argumentOf(note, found),
                                           .application = QString::fromStdString(name.desktopEntry),
                                           .needsAdministrator = found.needsAdministrator(),
                                           .targets = {},
                                           .trashed = {}};
    }
    if (!isCancelled()) {
        item.space = std::move(found.space);
        addItem(std::move(item), batches);
    }
}

void SChOperation::collectRow(const PlaceRow& row, ScanBatches& batches) {
    batches.step();
    const RowContents contents(row, {names_, open_, stopToken()});
    if (isCancelled() || contents.isNothing()) {
        return;
    }
    const auto name = nameOf(row, applications_);
    const auto program = runningProgram(row, name.program);
    const auto note = moreSerious(contents.judgement().note, program ? ItemNote::inUse : ItemNote::none);
    addItem({.path = row.path,
             .name = name.title,
             .size = contents.found().logical,
             .kind = files::NodeKind::directory,
             .root = row.root,
             .ticked = !program && contents.judgement().answer == PlaceAnswer::ticked,
             .note = note,
             .details =
                 engine::ItemDetails{
                     .rule = row.rule->id,
                     .noteArgument = program && note == ItemNote::inUse ? *program : argumentOf(note, contents.found()),
                     .application = QString::fromStdString(name.desktopEntry),
                     .needsAdministrator = contents.found().needsAdministrator(),
                     .targets = contents.targets(),
                     .trashed = {}},
             .space = contents.found().space},
            batches);
}

std::optional<QString> SChOperation::runningProgram(const PlaceRow& row, const std::string& program) {
    const auto use = row.profile.empty() ? platform::ProfileUse{} : platform::useOfProfile(row.profile);
    // In a sandbox processes have other numbers: only a lock of another machine says anything.
    const bool isUsed = row.running.chromium ? use.isUsed : use.isUsed && use.isElsewhere;
    const bool isRunning = (row.running.flatpak && running_.isFlatpakRunning(row.package)) ||
                           (row.running.snap && running_.isSnapRunning(row.package)) || isUsed;
    return isRunning ? std::optional(platform::displayText(program)) : std::nullopt;
}

}  // namespace brimvault::scanners
