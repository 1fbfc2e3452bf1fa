#include "engine/ItemRemoval.h"

#include <QCoreApplication>
#include <cerrno>

#include "engine/FileManager.h"
#include "engine/ProtectedFolders.h"
#include "files/NodeStatus.h"
#include "files/Remove.h"
#include "platform/TrashFolders.h"

namespace brimvault::engine {

namespace {

// Only what was removed here takes its record along: while the item is there no other can be trashed under its name,
// but the record of one that was gone before may already be that of the next.
void removeRecordOf(const std::filesystem::path& item) {
    const auto record = platform::TrashFolders::recordOfItem(item);
    if (!record) {
        return;
    }
    if (const auto status = files::statusOf(*record); status && status->kind == files::NodeKind::regular) {
        (void)files::remove(*record);  // one that stays tells of nothing
    }
}

bool isRefusedForRights(const files::Failure& failure) { return failure.code == EACCES || failure.code == EPERM; }

}  // namespace

QString ItemRemoval::withoutSystemText() { return QCoreApplication::translate("Clean", "Can't remove file"); }

ItemRemoval removeItemAt(const std::filesystem::path& path, PrivilegedRemover& remover) {
    ItemRemoval refused{false, ItemRemoval::withoutSystemText()};
    if (!path.is_absolute()) {
        return refused;  // where the program was started is no place that a list speaks of
    }
    if (!files::mayExist(path)) {
        return {true, {}};
    }
    if (isProtectedFolder(path)) {
        return refused;
    }
    const auto outcome = files::remove(path);  // without a stop: an item that was begun is finished
    if (outcome.end != files::RemovalEnd::gone &&
        !(isRefusedForRights(*outcome.failure) && !FileManager::isFileLocked(path.parent_path()) &&
          remover.removeFileAtPath(path))) {
        return {false, QString::fromLocal8Bit(outcome.failure->text().c_str())};
    }
    removeRecordOf(path);
    return {true, {}};
}

}  // namespace brimvault::engine
