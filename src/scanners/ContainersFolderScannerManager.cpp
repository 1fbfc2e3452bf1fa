#include "scanners/ContainersFolderScannerManager.h"

#include "scanners/SystemPathsGenerator.h"

namespace brimvault::scanners {

ContainersFolderScannerManager& ContainersFolderScannerManager::shared() {
    static ContainersFolderScannerManager instance(SystemPathsGenerator::shared().urlForPath("~/Library/Containers"));
    return instance;
}

const ContainersFolderScanner& ContainersFolderScannerManager::loaded() {
    if (!scanner_.isLoaded()) {
        scanner_.scanContainers();
    }
    return scanner_;
}

ContainersFolderScannerManager::Folders ContainersFolderScannerManager::logs() {
    const std::lock_guard guard(lock_);
    return loaded().logs();
}

ContainersFolderScannerManager::Folders ContainersFolderScannerManager::caches() {
    const std::lock_guard guard(lock_);
    return loaded().caches();
}

void ContainersFolderScannerManager::reset() {
    const std::lock_guard guard(lock_);
    scanner_.resetResults();
}

}  // namespace brimvault::scanners
