#include "engine/removal/FCutter.h"

#include <algorithm>

#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"
#include "engine/removal/FileCleanOperations.h"

namespace brimvault::engine {

namespace {

template <typename FileOperation>
CleanTable::FileOperation makerOf(PrivilegedRemover& remover) {
    return [&remover](const ItemArray& items) { return std::make_shared<FileOperation>(items, remover); };
}

}  // namespace

CleanTable CleanTable::fileSections(PrivilegedRemover& remover) {
    CleanTable table;
    table.remover = &remover;
    table.volumes = &Volumes::ofSystem();
    table.files[Section::downloads] = makerOf<CDwnOperation>(remover);
    table.files[Section::caches] = makerOf<CChOperation>(remover);
    table.files[Section::trash] = makerOf<CTrOperation>(remover);
    table.files[Section::logs] = makerOf<CLogsOperation>(remover);
    return table;
}

void FCutter::Clean(const std::optional<ApplicationArray>& pApps, const std::optional<ItemArray>& pDwn,
                    const std::optional<ItemArray>& pCache, const std::optional<ItemArray>& pTrash,
                    const std::optional<ItemArray>& pLogs, const Agreed& agreed,
                    const std::shared_ptr<const SharedGroups>& shared) {
    table_.remover->allowAskingUser();
    agreed_ = agreed;
    CleanedItems items{pApps, {}, agreed, shared};
    items.files[Section::downloads] = pDwn;
    items.files[Section::caches] = pCache;
    items.files[Section::trash] = pTrash;
    items.files[Section::logs] = pLogs;
    const auto meter = beginMeasuring(items);
    items = {};
    outcomes_ = [meter, history = table_.history](const ItemOutcome& outcome) {
        history->add(outcome);
        if (meter != nullptr) {
            meter->add(outcome);
        }
    };
    const auto done = std::make_shared<CompletionOperation>([this, meter] {
        CleanDone();
        endMeasuring(meter);
    });
    CleanAppsRes(pApps, done);
    CleanDownloads(pDwn, done);
    CleanCaches(pCache, done);
    CleanTrash(pTrash, done);
    CleanLogs(pLogs, done);
    pCutQue_.addOperation(done);
    agreed_ = {};
    outcomes_ = {};
}

std::shared_ptr<FreedSpaceMeter> FCutter::beginMeasuring(const CleanedItems& items) {
    cancelMeasuring();
    const bool isAnything = (items.applications && !items.applications->isEmpty()) ||
                            std::any_of(allSections.begin(), allSections.end(), [&](Section section) {
                                return items.files[section] && !items.files[section]->isEmpty();
                            });
    if (table_.volumes == nullptr || !isAnything) {
        return nullptr;
    }
    auto meter = std::make_shared<FreedSpaceMeter>(*table_.volumes);
    pCutQue_.addOperation(std::make_shared<MeasureBeforeClean>(meter, items));
    return meter;
}

void FCutter::endMeasuring(const std::shared_ptr<FreedSpaceMeter>& meter) {
    if (meter != nullptr) {
        pMeasureQue_.addOperation(std::make_shared<MeasureAfterClean>(meter));
    }
}

void FCutter::CleanAppsRes(const std::optional<ApplicationArray>& items, const std::shared_ptr<Operation>& oper) {
    if (items && !items->isEmpty() && table_.applications) {
        enqueue(table_.applications(*items, pclprops_), oper);
    }
}

void FCutter::CleanDownloads(const std::optional<ItemArray>& items, const std::shared_ptr<Operation>& oper) {
    cleanFiles(Section::downloads, items, oper);
}

void FCutter::CleanCaches(const std::optional<ItemArray>& items, const std::shared_ptr<Operation>& oper) {
    cleanFiles(Section::caches, items, oper);
}

void FCutter::CleanTrash(const std::optional<ItemArray>& items, const std::shared_ptr<Operation>& oper) {
    cleanFiles(Section::trash, items, oper);
}

void FCutter::CleanLogs(const std::optional<ItemArray>& items, const std::shared_ptr<Operation>& oper) {
    cleanFiles(Section::logs, items, oper);
}

void FCutter::cleanFiles(Section section, const std::optional<ItemArray>& items,
                         const std::shared_ptr<Operation>& oper) {
    const auto& make = table_.files[section];
    if (items && !items->isEmpty() && make) {
        enqueue(make(*items), oper);
    }
}

void FCutter::cancelCleanAll() {
    pCutQue_.cancelAllOperations();
    table_.remover->stopAskingUser();
}

void FCutter::giveUp() {
    pCutQue_.giveUp([](const Operation& operation) { return operation.isCancelled(); });
}

void FCutter::enqueue(const std::shared_ptr<SectionOperation>& operation, const std::shared_ptr<Operation>& oper) {
    operation->restrictTo(agreed_[operation->section()]);
    operation->reportTo(outcomes_);
    oper->addDependency(operation);
    pCutQue_.addOperation(operation);
}

void FCutter::CleanDone() { NotificationCenter::defaultCenter().post(notification::cleanFinished); }

}  // namespace brimvault::engine
