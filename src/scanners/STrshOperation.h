#pragma once

#include <QString>
#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/FinderPreferences.h"
#include "platform/TrashRecord.h"
#include "scanners/FileScanOperation.h"

namespace brimvault::scanners {

/// The scan of the Trash section: every item of the Trash as the desktop shows it, on all volumes, as the script
/// "TrashScan" lists them. If the script lists none, the home folder's ".Trash" is listed instead, and its items are
/// addressed by their names.
class STrshOperation final : public FileScanOperation {
public:
    /// Where the scan gets its data. The preferences outlive it.
    struct Sources {
        QString script = QStringLiteral(":/scripts/TrashScan");
        std::chrono::milliseconds scriptLimit{10'000};  ///< timeout, as a volume may not answer
        platform::FinderPreferences& finder = platform::FinderPreferences::shared();
        std::function<std::chrono::system_clock::time_point()> now = std::chrono::system_clock::now;
    };

    STrshOperation() : STrshOperation(Sources{}) {}
    explicit STrshOperation(Sources sources)
        : FileScanOperation(engine::Section::trash), sources_(std::move(sources)) {}

    [[nodiscard]] std::optional<std::filesystem::path> getOperationRootFolderURL() const override;

protected:
    void main() override;

private:
    void initCollectionByFinder();
    /// Parses alternating paths and sizes. Ignores a last path without a size, and paths outside of trash folders.
    [[nodiscard]] std::vector<std::filesystem::path> readPairs(const std::vector<std::string>& answer);
    /// The root folder whose items lie in the folder; null for a volume's trash folder.
    [[nodiscard]] std::shared_ptr<const platform::RootPlace> rootOf(const std::filesystem::path& folder) const;
    [[nodiscard]] bool mayListItemsOf(const std::filesystem::path& folder) const;
    void fixPathsWithSameFileNames(const std::vector<std::filesystem::path>& paths);
    void collectTrashInfoByFinder(ScanBatches& batches);
    struct TrashFolder;
    void collectMeasured(const TrashFolder& folder, ScanBatches& batches);
    [[nodiscard]] FoundFile fileIn(const TrashFolder& folder, const std::filesystem::path& path, quint64 size);
    /// Whether a leftover of an emptied trash has lain there for so long that nobody deletes it any more.
    [[nodiscard]] bool isAbandoned(const std::filesystem::path& leftover) const;
    void collectTrashInfo(ScanBatches& batches) const;

    Sources sources_;
    mutable std::map<std::filesystem::path, std::shared_ptr<const platform::RootPlace>> rootsOfFolders_;
    std::map<std::string, quint64> pathSizeDictionary_;  ///< by paths; bytes, or 0 if the script does not know
    platform::TrashRecords records_;
};

}  // namespace brimvault::scanners
