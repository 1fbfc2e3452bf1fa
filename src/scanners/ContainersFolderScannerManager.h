#pragma once

#include <mutex>

#include "scanners/ContainersFolderScanner.h"

namespace brimvault::scanners {

/// The containers' folders for scans that may run side by side: listed once, by whoever asks first after a reset, while
/// the others wait. Any thread; answers are copies.
class ContainersFolderScannerManager {
public:
    using Folders = ContainersFolderScanner::Folders;

    explicit ContainersFolderScannerManager(std::filesystem::path containersFolder)
        : scanner_(std::move(containersFolder)) {}
    /// The one of the process, for the user's own containers.
    static ContainersFolderScannerManager& shared();

    [[nodiscard]] Folders logs();
    [[nodiscard]] Folders caches();
    /// The next question lists the containers again.
    void reset();

private:
    const ContainersFolderScanner& loaded();

    std::mutex lock_;  ///< guards every access to the scanner
    ContainersFolderScanner scanner_;
};

}  // namespace brimvault::scanners
