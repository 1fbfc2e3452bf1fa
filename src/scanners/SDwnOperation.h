#pragma once

#include "files/OpenFiles.h"
#include "files/trees/Inspect.h"
#include "files/trees/MeasuredFolder.h"
#include "scanners/FileScanOperation.h"
#include "scanners/UnfinishedDownloads.h"

namespace brimvault::scanners {

/// The scan of the Downloads section: every visible entry of the downloads folder, a folder as one item. Items come
/// unticked, since only the user can tell what is still wanted, and are addressed by their names in the folder. Of
/// downloads that were not finished, and of what programs have open to write to it, the note says so.
class SDwnOperation final : public FileScanOperation {
public:
    SDwnOperation() : FileScanOperation(engine::Section::downloads) {}

    [[nodiscard]] std::optional<std::filesystem::path> getOperationRootFolderURL() const override;
    /// Finds the unfinished downloads on its way.
    void initTopLevelItemsCount() override;

protected:
    void main() override;
    [[nodiscard]] bool isTickedAtFirst() const override { return false; }

private:
    /// The downloads folder while it is listed.
    struct Listing {
        const OpenFolder& folder;
        std::shared_ptr<const engine::FoundIn> place;
        files::InspectionContext context;
    };
    void collectDownloadsInfo(ScanBatches& batches) const;
    void collectEntry(const Listing& listing, const files::MeasurableEntry& entry, ScanBatches& batches) const;
    /// What is known of an entry together with what belongs to it.
    [[nodiscard]] files::ItemFindings findingsOf(const Listing& listing, const files::MeasurableEntry& entry) const;
    [[nodiscard]] std::vector<engine::ItemTargets> targetsOf(const Listing& listing, const char* name,
                                                             std::uint64_t identity) const;

    files::OpenFiles open_;  ///< to write to, when the scan began
    UnfinishedDownloads unfinished_;
};

}  // namespace brimvault::scanners
