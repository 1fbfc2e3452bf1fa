#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "platform/SectionRoots.h"

namespace brimvault::scanners {

/// Lists the containers of sandboxed applications: for each, its caches folder and its logs folder, at the same index
/// of two lists. Neither folder need exist. One thread at a time; ContainersFolderScannerManager ensures that.
class ContainersFolderScanner {
public:
    using Folders = std::vector<std::filesystem::path>;

    explicit ContainersFolderScanner(std::filesystem::path containersFolder)
        : containersFolderURL_(std::move(containersFolder)) {}

    [[nodiscard]] const Folders& logs() const { return logs_; }
    [[nodiscard]] const Folders& caches() const { return caches_; }
    /// True after a listing since the last reset, even if it found no container.
    [[nodiscard]] bool isLoaded() const { return isLoaded_; }

    /// The folder of the containers; null before a listing.
    [[nodiscard]] const std::shared_ptr<const platform::RootPlace>& place() const { return place_; }

    /// Fills the empty lists.
    void scanContainers();
    void resetResults();

private:
    [[nodiscard]] Folders listContainerFolders();

    const std::filesystem::path containersFolderURL_;
    Folders logs_;
    Folders caches_;
    std::shared_ptr<const platform::RootPlace> place_;
    bool isLoaded_ = false;
};

}  // namespace brimvault::scanners
