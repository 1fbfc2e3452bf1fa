#include "ui/ScanOperations.h"

#include "scanners/ContainersFolderScannerManager.h"
#include "scanners/SChOperation.h"

namespace brimvault::ui {

engine::ScanTable scanOperations() {
    engine::ScanTable table;
    table.resetShared = [] { scanners::ContainersFolderScannerManager::shared().reset(); };
    table.operations[engine::Section::caches] = [] { return std::make_shared<scanners::SChOperation>(); };
    return table;
}

}  // namespace brimvault::ui
