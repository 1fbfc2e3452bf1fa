#include "engine/FScaner.h"

#include <algorithm>

#include "engine/CompletionOperation.h"
#include "engine/NotificationCenter.h"
#include "engine/Notifications.h"

namespace brimvault::engine {

void FScaner::Scan(bool bApps, bool bDwn, bool bCache, bool bTrash, bool bLogs) {
    if (table_.resetShared) {
        table_.resetShared();
    }
    const auto done = std::make_shared<CompletionOperation>(&FScaner::ScanDone);
    if (bApps) {
        ScanApplicationsResources(done);
    }
    if (bDwn) {
        ScanDownloads(done);
    }
    if (bCache) {
        ScanCaches(done);
    }
    if (bTrash) {
        ScanTrash(done);
    }
    if (bLogs) {
        ScanLogs(done);
    }
    pque_.addOperation(done);
}

void FScaner::scan(Section section, const std::shared_ptr<Operation>& done) {
    cancelOperationByClass(section);
    const auto& make = table_.operations[section];
    if (!make) {
        return;
    }
    const auto operation = make();
    done->addDependency(operation);
    pque_.addOperation(operation);
}

void FScaner::ScanDone() { NotificationCenter::defaultCenter().post(notification::scanFinished); }

bool FScaner::isScanning() const {
    const auto operations = pque_.operations();
    return std::any_of(operations.begin(), operations.end(), [](const auto& operation) {
        return dynamic_cast<const SectionOperation*>(operation.get()) != nullptr;
    });
}

}  // namespace brimvault::engine
