#include "scanners/SChOperation.h"

#include <algorithm>

#include "engine/model/FileSize.h"
#include "files/trees/Inspect.h"
#include "platform/DisplayText.h"
#include "platform/LibraryURLs.h"
#include "platform/System.h"
#include "scanners/places/PlacePattern.h"
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
            return engine::FileSize::formatMemoryStringDot1(found.unshared);
        case ItemNote::inUse:
            return found.openBy == 0 ? QString() : platform::displayText(files::programName(found.openBy));
        default:
            return {};
    }
}

// A browser keeps its caches under the names of its profiles' folders.
platform::ProfileUse useOfBrowser(PlaceRunning kind, const std::filesystem::path& name, const std::stop_token& stop) {
    const bool isMozilla = kind == PlaceRunning::mozilla;
    const auto settings = platform::LibraryURLs::baseFolder(platform::BaseFolder::configuration);
    if (kind == PlaceRunning::unknown || !settings) {
        return {};
    }
    const auto folder = isMozilla ? platform::homeFolder() / ".mozilla" / "firefox" : *settings / name;
    auto use = isMozilla ? platform::ProfileUse{} : platform::useOfProfile(folder);
    if (const auto opened = files::DirectoryHandle::openForReading(folder)) {
        forEachFitting(*opened, "*", stop, [&](const PlaceMatch& match) {
            if (!use.isUsed && match.kind == files::NodeKind::directory) {
                use = isMozilla ? platform::useOfMozillaProfile(folder / match.path)
                                : platform::useOfProfile(folder / match.path);
            }
        });
    }
    return use;
}

}  // namespace

struct SChOperation::RowContents {
    files::ItemFindings found;
    Judgement judgement;
    engine::ItemDetails details;

    void add(const files::ItemFindings& more, ItemNote note) {
        found.logical += more.logical;
        found.unshared += more.unshared;
        found.openBy = found.openBy != 0 ? found.openBy : more.openBy;
        details.needsAdministrator |= more.isForeign;
        if (isTickedByHandOnly(note) && !isTickedByHandOnly(judgement.note)) {
            judgement.note = note;
            judgement.answer = PlaceAnswer::unticked;
        }
    }
};

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
    std::shared_ptr<const engine::FoundIn> place;
    std::filesystem::path placePath;
    names_.forEachEntry(
        folder.handle, folder.path, open_, stopToken(), [](auto) { return false; },
        [&](const auto& entry) {
            batches.step();
            if (place == nullptr || placePath != entry.folderPath) {
                placePath = entry.folderPath;
                place = placeIn(entry.folderPath, entry.folder, folder.root);
            }
            const auto path = entry.folderPath / entry.name;
            auto judgement = entry.judgement;
            if (const auto inner = places_->take(path); inner && inner->answer > judgement.answer) {
                judgement = {inner->rule, inner->answer, inner->note};
            }
            auto found = entry.found;
            const auto running = judgement.rule == nullptr ? PlaceRunning::unknown : judgement.rule->running;
            if (const auto use = useOfBrowser(running, entry.name, stopToken()); use.isUsed) {
                judgement.answer = PlaceAnswer::unticked;
                judgement.note = ItemNote::inUse;
                found.openBy = use.program.value_or(found.openBy);
            }
            engine::ItemDetails details{judgement.rule == nullptr ? "" : judgement.rule->id,
                                        argumentOf(judgement.note, found),
                                        {},
                                        found.isForeign,
                                        {}};
            if (!isCancelled()) {
                addItem({.path = path,
                         .name = entry.name,
                         .size = found.logical,
                         .kind = entry.kind,
                         .root = folder.root,
                         .foundIn = place,
                         .ticked = judgement.answer == PlaceAnswer::ticked,
                         .note = judgement.note,
                         .details = std::move(details)},
                        batches);
            }
        });
}

void SChOperation::collectRow(const PlaceRow& row, ScanBatches& batches) {
    batches.step();
    RowContents contents;
    contents.judgement = {row.rule, row.answer, row.note};
    if (row.folders.empty()) {
        measureEntry(row, contents);
    }
    for (const auto& folder : row.folders) {
        measureFolder(row, folder, contents);
    }
    const bool isAnything = row.folders.empty() || !contents.details.targets.empty();
    if (isCancelled() || !isAnything || contents.judgement.answer == PlaceAnswer::spared) {
        return;
    }
    const auto name = nameOf(row, applications_);
    const auto program = runningProgram(row, name.program);
    if (program) {
        contents.judgement.answer = PlaceAnswer::unticked;
        contents.judgement.note = ItemNote::inUse;
    }
    const auto note = contents.judgement.note;
    contents.details.rule = row.rule->id;
    contents.details.application = QString::fromStdString(name.desktopEntry);
    contents.details.noteArgument = program ? *program : argumentOf(note, contents.found);
    addItem({.path = row.path,
             .name = name.title,
             .size = contents.found.logical,
             .kind = files::NodeKind::directory,
             .root = row.root,
             .ticked = contents.judgement.answer == PlaceAnswer::ticked,
             .note = note,
             .details = std::move(contents.details)},
            batches);
}

void SChOperation::measureEntry(const PlaceRow& row, RowContents& contents) const {
    const auto folder = files::DirectoryHandle::open(row.path.parent_path());
    const auto holder = folder ? folder->status() : files::Result<files::NodeStatus>::failed(folder.code());
    if (!holder) {
        contents.judgement.answer = PlaceAnswer::spared;
        return;
    }
    const auto name = row.path.filename();
    const auto found =
        files::inspectEntry(*folder, {name.c_str(), files::NodeKind::directory}, holder->mount, open_, stopToken());
    const auto* rule = row.rule;
    const auto judged = judge(std::span(&rule, 1), found, std::chrono::system_clock::now());
    contents.judgement.answer = std::max(contents.judgement.answer, judged.answer);
    contents.add(found, judged.note);
}

// Adds what the folder holds to what the row stands for. In a ticked row stays what would not be ticked by itself, but
// for what a program has open: then the row is in use.
void SChOperation::measureFolder(const PlaceRow& row, const PlaceFolder& folder, RowContents& contents) const {
    const auto handle = files::DirectoryHandle::openForReading(folder.path);
    const auto status = handle ? handle->status() : files::Result<files::NodeStatus>::failed(handle.code());
    if (!status || status->place() != folder.place ||
        (folder.rule->evidence.tagged && !files::isTaggedAsCache(*handle))) {
        return;
    }
    const auto isKept = [&](std::string_view name) {
        return std::any_of(folder.rule->keep.begin(), folder.rule->keep.end(),
                           [name](const char* kept) { return name == kept; });
    };
    const auto add = [&](const files::DirectoryHandle& in, const std::filesystem::path& path, const char* name,
                         const files::ItemFindings& found, const Judgement& judged) {
        const bool isUnticked = judged.answer == PlaceAnswer::unticked && judged.note != ItemNote::inUse;
        if (isCancelled() || (row.answer == PlaceAnswer::ticked && isUnticked)) {
            return;
        }
        auto& targets = contents.details.targets;
        const auto place = (path / "").native();
        if (targets.empty() || targets.back().folder->path != place) {
            targets.push_back({placeIn(path, in, row.root), {}});
        }
        targets.back().names.emplace_back(name);
        contents.add(found, judged.note);
    };
    if (folder.rule->shape == PlaceShape::cache) {
        names_.forEachEntry(*handle, folder.path, open_, stopToken(), isKept, [&](const CacheNames::Entry& entry) {
            add(entry.folder, entry.folderPath, entry.name, entry.found, entry.judgement);
        });
        return;
    }
    const auto now = std::chrono::system_clock::now();
    const auto sizes = [&](const char* name) { return isKept(name) ? files::Sizes::unwanted : files::Sizes::wanted; };
    const auto call = [&](const files::MeasurableEntry& entry) {
        if (entry.sizes == files::Sizes::wanted) {
            const auto found = entry.findings();
            const auto* rule = folder.rule;
            const auto judged = judge(std::span(&rule, 1), found, now);
            if (holdsEvidence(*rule, found, now) && judged.answer != PlaceAnswer::spared) {
                add(*handle, folder.path, entry.name, found, judged);
            }
        }
        return true;
    };
    (void)files::forEachMeasurable(*handle, files::HiddenEntries::include, stopToken(), sizes, call, &open_);
}

std::optional<QString> SChOperation::runningProgram(const PlaceRow& row, const std::string& program) {
    const auto named = [](const std::string& name) { return std::optional(platform::displayText(name)); };
    switch (row.rule->running) {
        case PlaceRunning::flatpak:
            return running_.isFlatpakRunning(row.application) ? named(program) : std::nullopt;
        case PlaceRunning::snap:
            return running_.isSnapRunning(row.application) ? named(program) : std::nullopt;
        case PlaceRunning::chromium:
            return platform::useOfProfile(row.profile).isUsed ? named(program) : std::nullopt;
        default:
            return std::nullopt;
    }
}

}  // namespace brimvault::scanners
