#include "scanners/SLogsOperation.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "files/trees/Measure.h"
#include "files/trees/MeasuredFolder.h"
#include "platform/System.h"
#include "platform/text/DisplayText.h"
#include "scanners/places/RowNames.h"

namespace brimvault::scanners {

namespace {

constexpr SLogsOperation::LogSource userLogs = 0;
constexpr SLogsOperation::LogSource crashReports = 1;
constexpr SLogsOperation::LogSource systemLogs = 2;
constexpr SLogsOperation::LogSource containerLogs = 3;
constexpr std::array sources = {userLogs, crashReports, systemLogs, containerLogs};

// Profiles are found as the Caches section finds them; whatever it thinks of their caches, logs are no one's work.
std::vector<PlaceRule> rulesOfLogs() {
    const auto logs = logsRules();
    std::vector<PlaceRule> rules(logs.begin(), logs.end());
    for (auto rule : cachesRules()) {
        if (rule.shape == PlaceShape::profile ||
            (rule.base == PlaceBase::profile && rule.answer == PlaceAnswer::spared)) {
            if (rule.answer == PlaceAnswer::unticked) {
                rule.answer = PlaceAnswer::ticked;
                rule.note = engine::ItemNote::none;
            }
            rules.push_back(rule);
        }
    }
    return rules;
}

qint64 countOfShown(const FoundPlaces& places) {
    const auto& rows = places.rows();
    return std::count_if(rows.begin(), rows.end(), [](const auto& row) { return row.answer == PlaceAnswer::shown; });
}

}  // namespace

void SLogsOperation::main() {
    for (const LogSource source : sources) {
        calculateFilesInSource(source);
    }
    calculateFilesInContainers();
    const auto rules = rulesOfLogs();
    const FoundPlaces places(rules, stopToken());
    const auto found = findByRules(places);
    setTopLevelItemsCount(nTopLevelItemsCount() + static_cast<qint64>(found.size()) + countOfShown(places));
    collectLogs(places, found, expect(nTopLevelItemsCount(), ScanBatches::Percent::cappedAtHundred));
    closeRoots();
    sendOperationCompleted();
}

void SLogsOperation::collectLogs(const FoundPlaces& places, const std::vector<LogsOfRow>& byRules,
                                 ScanBatches& batches) {
    for (const LogSource source : sources) {
        batches.beginPass();
        collectFilesFromSource(source, batches);
    }
    batches.beginPass();
    collectFromContainers(batches);
    batches.beginPass();
    for (const auto& found : byRules) {
        collectLogsOf(found, batches);
    }
    for (const auto& row : places.rows()) {
        if (row.answer == PlaceAnswer::shown && !isCancelled()) {
            collectShown(row, batches);
        }
    }
}

std::optional<std::filesystem::path> SLogsOperation::urlOfSource(LogSource source) const {
    const auto library = paths_.getHomeDirectory() / "Library";
    switch (source) {
        case userLogs:
            return library / "Logs";
        case crashReports:
            return library / "Application Support" / "CrashReporter";
        case systemLogs:
            return platform::systemRoot() / "Library" / "Logs";
        case containerLogs:
            return library / "Containers";
        default:
            return std::nullopt;
    }
}

bool SLogsOperation::isSourceNeedToSkipFile(LogSource source, const std::filesystem::path& name) {
    return source == userLogs &&
           (name == "CrashReporter" || name == "Ubiquity" || name.native().starts_with("talagent.log"));
}

void SLogsOperation::iterateFilesFromSource(LogSource source, const FileBlock& block) const {
    forEachFolderOfSource(source,
                          [&](const OpenFolder& folder) { iterateFiles(folder, files::HiddenEntries::skip, block); });
}

// Here every visible child of the containers folder counts as a container.
void SLogsOperation::forEachFolderOfSource(LogSource source, const FolderBlock& block) const {
    const auto named = urlOfSource(source);
    if (!named) {
        return;
    }
    withRoot(*named, [&](const OpenFolder& folder) {
        if (source != containerLogs) {
            block(folder);
            return;
        }
        iterateFiles(folder, files::HiddenEntries::skip, [&](const std::filesystem::path& container) {
            withFolderInside(container / "Data" / "Library" / "Logs", folder.root, block);
        });
    });
}

void SLogsOperation::calculateFilesInSource(LogSource source) {
    iterateFilesFromSource(source, [this](const auto&) { setTopLevelItemsCount(nTopLevelItemsCount() + 1); });
}

void SLogsOperation::calculateFilesInContainers() {
    setTopLevelItemsCount(nTopLevelItemsCount() + static_cast<qint64>(containers_.logs().size()));
}

// Skipped files were counted, so they advance the progress.
void SLogsOperation::collectFilesFromSource(LogSource source, ScanBatches& batches) const {
    forEachFolderOfSource(source, [&](const OpenFolder& folder) {
        collectFilesIn(folder, files::HiddenEntries::skip, Addressed::byPath, batches,
                       [&](const auto& name) { return isSourceNeedToSkipFile(source, name); });
    });
}

// This pass and its measurements run to the end even if the operation is cancelled.
void SLogsOperation::collectFromContainers(ScanBatches& batches) const {
    const auto place = containers_.place();
    for (const auto& logs : containers_.logs()) {
        batches.step();
        auto measured = files::measureSpace(logs);
        addItem({.path = logs,
                 .name = containerName(logs),
                 .size = measured.logical,
                 .root = place,
                 .space = std::move(measured.space)},
                batches);
    }
}

// What lies in a profile belongs to its program, also where another rule finds it.
std::vector<SLogsOperation::LogsOfRow> SLogsOperation::findByRules(const FoundPlaces& places) const {
    std::vector<LogsOfRow> found;
    if (places.rows().empty()) {
        return found;
    }
    const LogNames names(logsRules());
    std::optional<files::OpenFiles> known;
    const auto writers = [&]() -> const files::OpenFiles& {
        return known ? *known : known.emplace(files::OpenFiles::now(stopToken(), files::OpenFor::writing));
    };
    std::set<std::uint64_t> taken;
    for (const bool isOfProfile : {true, false}) {
        for (const auto& row : places.rows()) {
            if (row.profile.empty() == isOfProfile || isCancelled()) {
                continue;
            }
            if (LogFiles logs(row, {names, writers, taken, stopToken()}); logs.count() > 0 && !isCancelled()) {
                found.push_back({&row, std::move(logs)});
            }
        }
    }
    return found;
}

void SLogsOperation::collectLogsOf(const LogsOfRow& found, ScanBatches& batches) {
    batches.step();
    const auto& row = *found.row;
    const auto& logs = found.logs;
    const auto& first = logs.targets().front();
    const bool isOne = logs.count() == 1;
    const auto name = nameOf(row, applications_);
    // A row never stands for the user's home folder or another base.
    const bool isShownAsFile = isOne || row.path == row.root->resolved;
    // A report is never sent in parts.
    const bool isEmptied = row.note != engine::ItemNote::report;
    const bool isWritten = isEmptied && logs.writer() != 0;
    addItem({.path = isShownAsFile ? std::filesystem::path(first.folder->path) / first.names.front() : row.path,
             .name = isOne ? name.title + " \u2013 " + first.names.front() : name.title,
             .size = logs.size(),
             .kind = isShownAsFile ? files::NodeKind::regular : files::NodeKind::directory,
             .root = row.root,
             .ticked = row.answer == PlaceAnswer::ticked,
             .note = isWritten ? engine::ItemNote::emptied : row.note,
             .details =
                 engine::ItemDetails{
                     .rule = logs.rule().id,
                     .noteArgument = isWritten ? platform::displayText(files::programName(logs.writer())) : QString(),
                     .application = QString::fromStdString(name.desktopEntry),
                     .isEmptiedWhileWritten = isEmptied,
                     .targets = logs.targets(),
                     .trashed = {}},
             .space = logs.space()},
            batches);
}

// By blocks: a record of log-ins has holes, and is as long as the highest number of a user wants.
void SLogsOperation::collectShown(const PlaceRow& row, ScanBatches& batches) const {
    batches.step();
    const auto& keep = row.rule->keep;
    const auto sizes = [&keep](std::string_view name) {
        const bool isOther = std::find(keep.begin(), keep.end(), name) != keep.end();
        return isOther ? files::Sizes::unwanted : files::Sizes::wanted;
    };
    files::ReclaimableSpace space;
    (void)files::forEachMeasurable(row.path, files::HiddenEntries::include, stopToken(), sizes, [&](const auto& entry) {
        if (entry.sizes == files::Sizes::wanted) {
            space.add(entry.findings().space);
        }
        return true;
    });
    space.settle();
    if (space.bytes == 0 || isCancelled()) {
        return;
    }
    addItem({.path = row.path,
             .name = row.rule->title,
             .size = space.bytes,
             .kind = files::NodeKind::directory,
             .root = row.root,
             .isDeletable = false,
             .note = row.note,
             .details = engine::ItemDetails{.rule = row.rule->id,
                                            .noteArgument = QLatin1String(row.rule->command),
                                            .application = {},
                                            .targets = {},
                                            .trashed = {}},
             .space = space},
            batches);
}

}  // namespace brimvault::scanners
