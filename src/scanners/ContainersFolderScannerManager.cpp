#include "scanners/ContainersFolderScannerManager.h"

#include "scanners/SystemPathsGenerator.h"

namespace brimvault::scanners {

ContainersFolderScannerManager::ContainersFolderScannerManager(const std::filesystem::path& containersFolder)
    : makeScanner_([containersFolder] { return std::make_unique<ContainersFolderScanner>(containersFolder); }) {}

ContainersFolderScannerManager& ContainersFolderScannerManager::shared() {
    static ContainersFolderScannerManager instance(SystemPathsGenerator::shared().urlForPath("~/Library/Containers"));
    return instance;
}

ContainersFolderScannerManager::Listing ContainersFolderScannerManager::load() const {
    std::shared_ptr<ContainersFolderScanner> scanner = makeScanner_();
    scanner->scanContainers();
    return scanner;
}

// The first caller leaves a future for the others, and lists without the lock.
ContainersFolderScannerManager::Listing ContainersFolderScannerManager::loaded() {
    std::packaged_task<Listing()> listing;
    std::shared_future<Listing> answer;
    {
        const std::lock_guard guard(lock_);
        if (!listing_.valid()) {
            listing = std::packaged_task<Listing()>([this] { return load(); });
            listing_ = listing.get_future().share();
        }
        answer = listing_;
    }
    if (listing.valid()) {
        listing();
    }
    return answer.get();
}

void ContainersFolderScannerManager::reset() {
    const std::lock_guard guard(lock_);
    listing_ = {};
}

}  // namespace brimvault::scanners
