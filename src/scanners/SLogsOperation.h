#pragma once

#include <functional>
#include <vector>

#include "platform/DesktopEntries.h"
#include "scanners/ContainersFolderScannerManager.h"
#include "scanners/FileScanOperation.h"
#include "scanners/PathsGenerator.h"
#include "scanners/places/FoundPlaces.h"
#include "scanners/places/LogFiles.h"

namespace brimvault::scanners {

/// The scan of the Logs section: the visible entries of four sources, then the logs folder of every application
/// container as one item each. The containers' logs are listed twice on purpose, singly and as a whole. A first pass
/// counts what five passes then list. Where the desktop has folders of its own for what programs keep, the logs in
/// these as well, as the rules of resources/places/ have them: one item for each folder of a program.
class SLogsOperation final : public FileScanOperation {
public:
    /// Number of a source of logs: 0 the user's logs, 1 the crash reporter's, 2 the system's logs, 3 those inside the
    /// containers. Any other number has no folder.
    using LogSource = int;
    using FileBlock = std::function<void(const std::filesystem::path&)>;

    explicit SLogsOperation(ContainersFolderScannerManager& containers = ContainersFolderScannerManager::shared(),
                            const PathsGenerator& paths = PathsGenerator::GetInstance())
        : FileScanOperation(engine::Section::logs), containers_(containers), paths_(paths) {}

    /// The source's folder; none for an unknown number.
    [[nodiscard]] std::optional<std::filesystem::path> urlOfSource(LogSource source) const;
    /// Whether the entry is one of the user's logs that other programs manage.
    [[nodiscard]] static bool isSourceNeedToSkipFile(LogSource source, const std::filesystem::path& name);

protected:
    void main() override;

private:
    struct LogsOfRow {
        const PlaceRow* row;
        LogFiles logs;
    };

    void collectLogs(const FoundPlaces& places, const std::vector<LogsOfRow>& byRules, ScanBatches& batches);
    void iterateFilesFromSource(LogSource source, const FileBlock& block) const;
    void forEachFolderOfSource(LogSource source, const FolderBlock& block) const;
    void calculateFilesInSource(LogSource source);
    void calculateFilesInContainers();
    void collectFilesFromSource(LogSource source, ScanBatches& batches) const;
    void collectFromContainers(ScanBatches& batches) const;
    [[nodiscard]] std::vector<LogsOfRow> findByRules(const FoundPlaces& places) const;
    /// What the system alone removes, as far as it can be measured.
    void collectShown(const PlaceRow& row, ScanBatches& batches) const;
    void collectLogsOf(const LogsOfRow& found, ScanBatches& batches);

    ContainersFolderScannerManager& containers_;
    const PathsGenerator& paths_;
    platform::DesktopEntries applications_;
};

}  // namespace brimvault::scanners
