#pragma once

#include "scanners/FileScanOperation.h"

namespace brimvault::scanners {

/// The scan of the Downloads section: every visible entry of the downloads folder, a folder as one item. Items come
/// unticked, since only the user can tell what is still wanted, and are addressed by their names in the folder.
class SDwnOperation final : public FileScanOperation {
public:
    SDwnOperation() : FileScanOperation(engine::Section::downloads) {}

    [[nodiscard]] std::optional<std::filesystem::path> getOperationRootFolderURL() const override;

protected:
    void main() override;
    [[nodiscard]] bool isTickedAtFirst() const override { return false; }

private:
    void collectDownloadsInfo(ScanBatches& batches) const;
};

}  // namespace brimvault::scanners
