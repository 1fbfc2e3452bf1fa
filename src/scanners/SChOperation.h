#pragma once

#include "scanners/ContainersFolderScannerManager.h"
#include "scanners/FileScanOperation.h"

namespace brimvault::scanners {

/// The scan of the Caches section: every visible entry of the user's caches folder, then the caches folder of every
/// application container as one item each, whether it exists or not. Unsorted.
class SChOperation final : public FileScanOperation {
public:
    explicit SChOperation(ContainersFolderScannerManager& containers = ContainersFolderScannerManager::shared())
        : FileScanOperation(engine::Section::caches), containers_(containers) {}

    [[nodiscard]] std::optional<std::filesystem::path> getOperationRootFolderURL() const override;
    /// The entries of the folder and the containers.
    void initTopLevelItemsCount() override;

protected:
    void main() override;

private:
    void collectCachesInfo(ScanBatches& batches) const;

    ContainersFolderScannerManager& containers_;
};

}  // namespace brimvault::scanners
