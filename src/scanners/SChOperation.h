#pragma once

#include "files/OpenFiles.h"
#include "platform/DesktopEntries.h"
#include "platform/RunningPrograms.h"
#include "scanners/ContainersFolderScannerManager.h"
#include "scanners/FileScanOperation.h"
#include "scanners/places/CacheNames.h"
#include "scanners/places/FoundPlaces.h"

namespace brimvault::scanners {

/// The scan of the Caches section: every visible entry of the user's caches folder, then the caches folder of every
/// application container as one item each, whether it exists or not. Where the desktop has a caches folder of its own,
/// its entries as well, hidden ones too, and the caches that programs keep elsewhere, as the rules of resources/places/
/// have them. Unsorted.
class SChOperation final : public FileScanOperation {
public:
    explicit SChOperation(ContainersFolderScannerManager& containers = ContainersFolderScannerManager::shared())
        : FileScanOperation(engine::Section::caches), containers_(containers) {}

    [[nodiscard]] std::optional<std::filesystem::path> getOperationRootFolderURL() const override;
    /// The entries of the folders, the containers, and what is known of other places.
    void initTopLevelItemsCount() override;

protected:
    void main() override;

private:
    /// A caches folder; with its hidden entries, it is the desktop's, for which the rules hold.
    struct CachesFolder {
        std::filesystem::path named;
        files::HiddenEntries hidden;
    };
    [[nodiscard]] static std::vector<CachesFolder> folders();

    void collectCachesInfo(ScanBatches& batches);
    void collectByRules(const OpenFolder& folder, ScanBatches& batches);
    void collectEntry(const CacheNames::Entry& entry, const Judgement& judgement,
                      const std::shared_ptr<const engine::FoundIn>& place,
                      const std::shared_ptr<const platform::RootPlace>& root, ScanBatches& batches);
    void collectRow(const PlaceRow& row, ScanBatches& batches);
    /// The row's program if it runs, by what it or its package system says.
    [[nodiscard]] std::optional<QString> runningProgram(const PlaceRow& row, const std::string& program);

    ContainersFolderScannerManager& containers_;
    const CacheNames names_{cachesRules()};
    files::OpenFiles open_;  ///< as it was when the scan began
    platform::RunningPrograms running_;
    platform::DesktopEntries applications_;
    std::optional<FoundPlaces> places_;  ///< looked for when the scan begins
};

}  // namespace brimvault::scanners
