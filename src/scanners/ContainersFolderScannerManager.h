#pragma once

#include <functional>
#include <future>
#include <memory>
#include <mutex>

#include "scanners/ContainersFolderScanner.h"

namespace brimvault::scanners {

/// The containers' folders for scans that may run side by side: listed once, by whoever asks first after a reset, while
/// the others wait. Any thread; answers are copies.
///
/// A listing that hangs holds up those who wait for it, and nobody else: after a reset the folder is listed afresh.
class ContainersFolderScannerManager {
public:
    using Folders = ContainersFolderScanner::Folders;

    explicit ContainersFolderScannerManager(const std::filesystem::path& containersFolder);
    /// Over scanners of the caller's; each is asked to scan once.
    explicit ContainersFolderScannerManager(std::function<std::unique_ptr<ContainersFolderScanner>()> makeScanner)
        : makeScanner_(std::move(makeScanner)) {}
    /// The one of the process, for the user's own containers.
    static ContainersFolderScannerManager& shared();

    [[nodiscard]] Folders logs() { return loaded()->logs(); }
    [[nodiscard]] Folders caches() { return loaded()->caches(); }
    /// Where they lie; never null.
    [[nodiscard]] std::shared_ptr<const platform::RootPlace> place() { return loaded()->place(); }
    /// The next question lists the containers again.
    void reset();

private:
    using Listing = std::shared_ptr<const ContainersFolderScanner>;

    [[nodiscard]] Listing loaded();
    [[nodiscard]] Listing load() const;

    const std::function<std::unique_ptr<ContainersFolderScanner>()> makeScanner_;
    std::mutex lock_;                      ///< protects what follows; nothing is listed under it
    std::shared_future<Listing> listing_;  ///< since the last reset; not valid before somebody asks
};

}  // namespace brimvault::scanners
