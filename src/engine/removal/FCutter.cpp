#include "engine/removal/FCutter.h"

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
    table.files[Section::downloads] = makerOf<CDwnOperation>(remover);
    table.files[Section::caches] = makerOf<CChOperation>(remover);
    table.files[Section::trash] = makerOf<CTrOperation>(remover);
    table.files[Section::logs] = makerOf<CLogsOperation>(remover);
    return table;
}

void FCutter::Clean(const std::optional<ApplicationArray>& pApps, const std::optional<ItemArray>& pDwn,
                    const std::optional<ItemArray>& pCache, const std::optional<ItemArray>& pTrash,
                    const std::optional<ItemArray>& pLogs, const Agreed& agreed) {
    table_.remover->allowAskingUser();
    agreed_ = agreed;
    const auto done = std::make_shared<CompletionOperation>(&FCutter::CleanDone);
    CleanAppsRes(pApps, done);
    CleanDownloads(pDwn, done);
    CleanCaches(pCache, done);
    CleanTrash(pTrash, done);
    CleanLogs(pLogs, done);
    pCutQue_.addOperation(done);
    agreed_ = {};
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
    oper->addDependency(operation);
    pCutQue_.addOperation(operation);
}

void FCutter::CleanDone() { NotificationCenter::defaultCenter().post(notification::cleanFinished); }

}  // namespace brimvault::engine
