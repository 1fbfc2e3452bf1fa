#pragma once

#include <functional>
#include <future>
#include <memory>
#include <mutex>

#include "scanners/ContainersFolderScanner.h"

namespace brimvault::scanners {

/// A cache of the containers' folders for scans that run concurrently: the first caller after a reset lists them, the
/// others wait for its result. Any thread; answers are copies.
///
/// A listing that hangs blocks only the callers that wait for it: after a reset the folder is listed afresh.
class ContainersFolderScannerManager {
public:
    using Folders = ContainersFolderScanner::Folders;

    explicit ContainersFolderScannerManager(const std::filesystem::path& containersFolder);
    /// With scanners made by the caller; each scans once.
    explicit ContainersFolderScannerManager(std::function<std::unique_ptr<ContainersFolderScanner>()> makeScanner)
        : makeScanner_(std::move(makeScanner)) {}
    /// The process-wide instance, for the user's own containers.
    static ContainersFolderScannerManager& shared();

    [[nodiscard]] Folders logs() { return loaded()->logs(); }
    [[nodiscard]] Folders caches() { return loaded()->caches(); }
    /// The folder of the containers; never null.
    [[nodiscard]] std::shared_ptr<const platform::RootPlace> place() { return loaded()->place(); }
    /// The next call lists the containers again.
    void reset();

private:
    using Listing = std::shared_ptr<const ContainersFolderScanner>;

    [[nodiscard]] Listing loaded();
    [[nodiscard]] Listing load() const;

    const std::function<std::unique_ptr<ContainersFolderScanner>()> makeScanner_;
    std::mutex lock_;                      ///< protects what follows; not held while listing
    std::shared_future<Listing> listing_;  ///< since the last reset; not valid before the first call
};

}  // namespace brimvault::scanners
