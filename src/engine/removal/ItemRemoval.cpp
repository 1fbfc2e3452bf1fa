#include "engine/removal/ItemRemoval.h"

#include <QCoreApplication>
#include <cerrno>

#include "engine/model/FileManager.h"
#include "files/NodeStatus.h"
#include "files/trees/Remove.h"
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

// The folder at a path, links refused, unless it is another one than it was.
files::Result<files::DirectoryHandle> openSame(const std::filesystem::path& path, const files::FileIdentity& identity,
                                               bool& isTheOne) {
    auto opened = files::DirectoryHandle::open(path);
    const auto status = opened ? opened->status() : files::Result<files::NodeStatus>::failed(opened.code());
    isTheOne = status && status->identity == identity;
    return status ? std::move(opened) : files::Result<files::DirectoryHandle>::failed(status.code());
}

QString systemText(const files::Failure& failure) { return QString::fromLocal8Bit(failure.text().c_str()); }

}  // namespace

QString ItemRemoval::withoutSystemText() { return QCoreApplication::translate("Clean", "Can't remove file"); }

QString ItemRemoval::exchangedText() {
    return QCoreApplication::translate("Clean", "Its folder is not the one that was scanned any more");
}

ItemRemoval ItemRemover::remove(const std::filesystem::path& path, const std::shared_ptr<const FoundIn>& foundIn) {
    if (!path.is_absolute()) {
        return {false, ItemRemoval::withoutSystemText()};  // where the program was started is no place of a list
    }
    if (foundIn == nullptr) {
        return removeNow(path, nullptr);
    }
    const bool leadsThere = leadsWhereItDid(*foundIn);
    const int code = foundIn->folder ? hold(foundIn, path.parent_path()) : 0;
    if (code != 0 && code != ENOENT) {
        return {false, systemText({code, path})};
    }
    if (!leadsThere || (code == 0 && foundIn->folder && !isTheOne_)) {
        return {false, ItemRemoval::exchangedText()};
    }
    if (code == ENOENT) {
        return {true, {}};  // with the folder that held it
    }
    return removeNow(path, foundIn->folder ? &*held_ : nullptr);
}

bool ItemRemover::leadsWhereItDid(const FoundIn& foundIn) {
    if (foundIn.root == nullptr) {
        return true;
    }
    const auto known = leads_.find(foundIn.root);
    return known != leads_.end() ? known->second
                                 : leads_.emplace(foundIn.root, platform::leadsWhereItDid(*foundIn.root)).first->second;
}

int ItemRemover::hold(const std::shared_ptr<const FoundIn>& foundIn, const std::filesystem::path& folder) {
    if (holding_ == foundIn && held_) {
        return 0;
    }
    auto opened = openSame(folder, *foundIn->folder, isTheOne_);
    holding_ = foundIn;
    held_.reset();
    if (opened) {
        held_ = std::move(*opened);
    }
    return opened.code();
}

ItemRemoval ItemRemover::removeNow(const std::filesystem::path& path, const files::DirectoryHandle* folder) {
    const auto item =
        folder == nullptr ? files::statusOf(path) : files::statusAt(folder->descriptor(), path.filename().c_str());
    if (item.code() == ENOENT || item.code() == ENOTDIR) {
        return {true, {}};
    }
    if (item && item->kind == files::NodeKind::directory) {
        if (!protected_) {
            protected_.emplace();
        }
        if (protected_->isOneOrHoldsOne(path, *item)) {
            return {false, ItemRemoval::withoutSystemText()};
        }
    }
    // Without a stop: an item that was begun is finished.
    const auto outcome = folder == nullptr ? files::remove(path) : files::removeIn(*folder, path);
    if (outcome.end != files::RemovalEnd::gone &&
        !(isRefusedForRights(*outcome.failure) && !FileManager::isFileLocked(path.parent_path()) &&
          isStillAt(path.parent_path(), folder) && remover_.removeFileAtPath(path))) {
        return {false, systemText(*outcome.failure)};
    }
    removeRecordOf(path);
    return {true, {}};
}

// Who has more rights is given a path, and looks it up anew.
bool ItemRemover::isStillAt(const std::filesystem::path& path, const files::DirectoryHandle* folder) const {
    bool isTheOne = folder == nullptr;
    return isTheOne || (openSame(path, *holding_->folder, isTheOne) && isTheOne);
}

ItemRemoval removeItemAt(const std::filesystem::path& path, PrivilegedRemover& remover) {
    return ItemRemover(remover).remove(path, nullptr);
}

}  // namespace brimvault::engine
