#include "app/scan/ScanOperations.h"

#include "langres/SAOperation.h"
#include "scanners/ContainersFolderScannerManager.h"
#include "scanners/SChOperation.h"
#include "scanners/SDwnOperation.h"
#include "scanners/SLogsOperation.h"
#include "scanners/STrshOperation.h"

namespace brimvault::app {

engine::ScanTable scanOperations() {
    using engine::Section;
    engine::ScanTable table;
    table.resetShared = [] { scanners::ContainersFolderScannerManager::shared().reset(); };
    table.operations[Section::languageResources] = [] { return std::make_shared<langres::SAOperation>(); };
    table.operations[Section::caches] = [] { return std::make_shared<scanners::SChOperation>(); };
    table.operations[Section::logs] = [] { return std::make_shared<scanners::SLogsOperation>(); };
    table.operations[Section::downloads] = [] { return std::make_shared<scanners::SDwnOperation>(); };
    table.operations[Section::trash] = [] { return std::make_shared<scanners::STrshOperation>(); };
    return table;
}

}  // namespace brimvault::app
