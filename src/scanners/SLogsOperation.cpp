#include "scanners/SLogsOperation.h"

#include <array>
#include <utility>

#include "files/trees/Measure.h"
#include "platform/System.h"

namespace brimvault::scanners {

namespace {

constexpr SLogsOperation::LogSource userLogs = 0;
constexpr SLogsOperation::LogSource crashReports = 1;
constexpr SLogsOperation::LogSource systemLogs = 2;
constexpr SLogsOperation::LogSource containerLogs = 3;
constexpr std::array sources = {userLogs, crashReports, systemLogs, containerLogs};

}  // namespace

void SLogsOperation::main() {
    for (const LogSource source : sources) {
        calculateFilesInSource(source);
    }
    calculateFilesInContainers();
    collectLogs(expect(nTopLevelItemsCount(), ScanBatches::Percent::cappedAtHundred));
    closeRoots();
    sendOperationCompleted();
}

void SLogsOperation::collectLogs(ScanBatches& batches) {
    for (const LogSource source : sources) {
        batches.beginPass();
        collectFilesFromSource(source, batches);
    }
    batches.beginPass();
    collectFromContainers(batches);
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

}  // namespace brimvault::scanners
