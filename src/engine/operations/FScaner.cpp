#include "engine/operations/FScaner.h"

#include <algorithm>

#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"

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
    if (!make || isHanging(section)) {
        return;
    }
    const auto operation = make();
    done->addDependency(operation);
    pque_.addOperation(operation);
}

void FScaner::ScanDone() { NotificationCenter::defaultCenter().post(notification::scanFinished); }

std::vector<Section> FScaner::giveUpCancelled(const std::function<bool(Section)>& chosen) {
    std::vector<Section> sections;
    for (const Section section : allSections) {
        const auto isLate = [section](const Operation& operation) {
            return operation.isCancelled() && isOf(operation, section);
        };
        if (chosen(section) && !pque_.giveUp(isLate).empty()) {
            sections.push_back(section);
        }
    }
    return sections;
}

bool FScaner::isScanning() const {
    return std::any_of(allSections.begin(), allSections.end(), [this](Section section) { return isScanning(section); });
}

bool FScaner::isScanning(Section section) const {
    const auto operations = pque_.operations();
    return std::any_of(operations.begin(), operations.end(),
                       [section](const auto& operation) { return isOf(*operation, section); });
}

bool FScaner::isHanging(Section section) const {
    const auto hanging = pque_.leftBehind();
    return std::any_of(hanging.begin(), hanging.end(),
                       [section](const auto& operation) { return isOf(*operation, section); });
}

}  // namespace brimvault::engine
