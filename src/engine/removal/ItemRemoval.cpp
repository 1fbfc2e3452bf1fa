#include "engine/removal/ItemRemoval.h"

#include <QCoreApplication>
#include <algorithm>
#include <cerrno>
#include <system_error>

#include "engine/model/FileManager.h"
#include "files/NodeStatus.h"
#include "files/removal/EmptyFile.h"
#include "files/removal/Remove.h"
#include "platform/FolderLocations.h"
#include "platform/System.h"

namespace brimvault::engine {

namespace {

bool isRefusedForRights(const files::Failure& failure) { return failure.code == EACCES || failure.code == EPERM; }

// Not even an administrator can remove such an item.
bool isLocked(const std::filesystem::path& item) {
    return FileManager::isFileLocked(item) || FileManager::isFileLocked(item.parent_path());
}

// Opens the folder at a path, without following links; `isSame` tells whether it still is the same folder.
files::Result<files::DirectoryHandle> openSame(const std::filesystem::path& path, const files::FileIdentity& identity,
                                               bool& isSame) {
    auto opened = files::DirectoryHandle::open(path);
    const auto status = opened ? opened->status() : files::Result<files::NodeStatus>::failed(opened.code());
    isSame = status && status->identity == identity;
    return status ? std::move(opened) : files::Result<files::DirectoryHandle>::failed(status.code());
}

// Whether the deepest folder of the path that still exists is on the device.
bool isOnDevice(std::filesystem::path folder, std::uint64_t device) {
    auto status = files::statusOf(folder);
    while (!status && folder.has_relative_path()) {
        folder = folder.parent_path();
        status = files::statusOf(folder);
    }
    return status && status->identity.device == device;
}

// The folder that is at the path now.
PrivilegedRemover::Holder identityOf(const std::filesystem::path& folder) {
    const auto status = files::statusOf(folder);
    return status ? PrivilegedRemover::Holder(status->identity) : std::nullopt;
}

// Whether this is a trial, over made-up folders, and the item lies in none of them.
bool isOutsideOfTrial(const std::filesystem::path& item) {
    const auto root = platform::systemRoot();
    if (root == "/") {
        return false;
    }
    std::error_code unresolved;
    const auto resolvedRoot = std::filesystem::weakly_canonical(root, unresolved);
    const auto folder =
        unresolved ? std::filesystem::path() : std::filesystem::canonical(item.parent_path(), unresolved);
    return unresolved || !(platform::holds(platform::homeFolder(), folder) || platform::holds(resolvedRoot, folder));
}

QString systemText(const files::Failure& failure) { return QString::fromLocal8Bit(failure.text().c_str()); }

ItemRemover::IfWritten ifWritten(const FFItem& item) {
    return item.details().isEmptiedWhileWritten ? ItemRemover::IfWritten::empty : ItemRemover::IfWritten::remove;
}

// Never removed where that fails: its writer would go on filling the disk, where nobody finds the file any more.
ItemRemoval emptied(const files::DirectoryHandle& folder, const std::filesystem::path& path, std::uint64_t identity) {
    const int code = files::emptyFileIn(folder, path.filename().c_str(), identity).code();
    switch (code) {
        case 0:
            return {true, {}, 1};
        case ENOENT:
            return {true, {}};
        case ESTALE:
            return {false, ItemRemoval::replacedText()};
        case EMLINK:
            return {false, ItemRemoval::severalNamesText()};
        default:
            return {false, systemText({code, path})};
    }
}

}  // namespace

QString ItemRemoval::withoutSystemText() { return QCoreApplication::translate("Clean", "Can't remove file"); }

QString ItemRemoval::exchangedText() {
    return QCoreApplication::translate("Clean", "Its folder is not the one that was scanned any more");
}

QString ItemRemoval::replacedText() {
    return QCoreApplication::translate("Clean", "It is not the file or folder that was scanned any more");
}

QString ItemRemoval::severalNamesText() {
    return QCoreApplication::translate("Clean", "A program writes to it, and it has another name as well");
}

QString ItemRemoval::outsideOfTrialText() {
    return QCoreApplication::translate("Clean", "It lies outside of the trial");
}

ItemRemoval ItemRemover::remove(const std::filesystem::path& path, const std::shared_ptr<const FoundIn>& foundIn,
                                const ExpectedNode& expected, IfWritten ifWritten) {
    if (!path.is_absolute()) {
        return {false, ItemRemoval::withoutSystemText()};  // never resolve against the working directory
    }
    if (foundIn == nullptr) {
        return removeNow(path, nullptr, expected, ifWritten);
    }
    const bool leadsThere = leadsWhereItDid(*foundIn);
    const int code = foundIn->folder ? openFolder(foundIn, path.parent_path()) : 0;
    if (code != 0 && code != ENOENT) {
        return {false, systemText({code, path})};
    }
    if (!leadsThere || (code == 0 && foundIn->folder && !isSameFolder_)) {
        return {false, ItemRemoval::exchangedText()};
    }
    if (code == ENOENT) {  // gone together with its folder, or out of reach with its disk
        return isOnDevice(path.parent_path(), foundIn->folder->device) ? ItemRemoval{true, {}}
                                                                       : ItemRemoval{false, systemText({code, path})};
    }
    return removeNow(path, foundIn->folder ? &*folder_ : nullptr, expected, ifWritten);
}

ItemRemoval ItemRemover::removeItem(const FFItem& item, const std::filesystem::path& path) {
    const bool isLog = item.details().isEmptiedWhileWritten;
    return remove(path, item.foundIn(), isLog ? ExpectedNode{.identity = item.identity()} : ExpectedNode(),
                  ifWritten(item));
}

ItemRemoval ItemRemover::removeTargets(const FFItem& item, const Veto& veto) {
    ItemRemoval all{true, {}};
    for (const auto& target : item.details().targets) {
        for (std::size_t number = 0; number < target.names.size(); ++number) {
            const auto removal = removeTarget(target, number, veto, ifWritten(item));
            all.emptied += removal.emptied;
            if (all.gone && !removal.gone) {
                all.gone = false;
                all.reason = removal.reason;
            }
        }
    }
    return all;
}

ItemRemoval ItemRemover::removeTarget(const ItemTargets& target, std::size_t number, const Veto& veto,
                                      IfWritten ifWritten) {
    const auto& name = target.names[number];
    if (target.folder == nullptr || !isOneName(name)) {
        return {false, ItemRemoval::withoutSystemText()};
    }
    const auto path = std::filesystem::path(target.folder->path) / name;
    const QString reason = veto ? veto(path) : QString();
    return reason.isEmpty() ? remove(path, target.folder, target.expectedOf(number), ifWritten)
                            : ItemRemoval{false, reason};
}

ItemRemover::Reached ItemRemover::reach(const std::filesystem::path& path,
                                        const std::shared_ptr<const FoundIn>& foundIn, const ExpectedNode& expected) {
    if (!path.is_absolute() || foundIn == nullptr || !foundIn->folder) {
        return {ItemRemoval::withoutSystemText(), nullptr, {}};
    }
    if (const int code = openFolder(foundIn, path.parent_path()); code != 0) {
        return {systemText({code, path}), nullptr, {}};
    }
    if (!isSameFolder_ || !leadsWhereItDid(*foundIn)) {
        return {ItemRemoval::exchangedText(), nullptr, {}};
    }
    auto item = files::statusAt(folder_->descriptor(), path.filename().c_str());
    if (!item) {
        return {item.code() == ENOENT ? QString() : systemText({item.code(), path}), nullptr, {}};
    }
    const QString refusal = reasonToKeep(path, *item, expected);
    return {refusal, refusal.isEmpty() ? &*folder_ : nullptr, *item};
}

bool ItemRemover::leadsWhereItDid(const FoundIn& foundIn) {
    if (foundIn.root == nullptr) {
        return true;
    }
    const auto known = leadsCache_.find(foundIn.root);
    return known != leadsCache_.end()
               ? known->second
               : leadsCache_.emplace(foundIn.root, platform::leadsWhereItDid(*foundIn.root)).first->second;
}

int ItemRemover::openFolder(const std::shared_ptr<const FoundIn>& foundIn, const std::filesystem::path& folder) {
    if (folderFoundIn_ == foundIn && folder_) {
        return 0;
    }
    auto opened = openSame(folder, *foundIn->folder, isSameFolder_);
    folderFoundIn_ = foundIn;
    folder_.reset();
    if (opened) {
        folder_ = std::move(*opened);
    }
    return opened.code();
}

QString ItemRemover::reasonToKeep(const std::filesystem::path& path, const files::NodeStatus& item,
                                  const ExpectedNode& expected) {
    if ((expected.identity != 0 && item.identity.digest() != expected.identity) ||
        (expected.isEmpty && item.size != 0)) {
        return ItemRemoval::replacedText();
    }
    if (ProtectedFolders::areSystemLogs(path)) {
        return ItemRemoval::withoutSystemText();
    }
    if (item.kind == files::NodeKind::directory || item.kind == files::NodeKind::link) {
        if (!protected_) {
            protected_.emplace();
        }
        if (protected_->keeps(path, item)) {
            return ItemRemoval::withoutSystemText();
        }
    }
    return isOutsideOfTrial(path) ? ItemRemoval::outsideOfTrialText() : QString();
}

ItemRemoval ItemRemover::removeNow(const std::filesystem::path& path, const files::DirectoryHandle* folder,
                                   const ExpectedNode& expected, IfWritten ifWritten) {
    const bool isLog = ifWritten == IfWritten::empty && folder != nullptr && expected.identity != 0;
    const bool isWrittenLog = isLog && isWrittenAt(*folder, path);
    // Looked at last, since to learn who writes takes its time.
    const auto item =
        folder == nullptr ? files::statusOf(path) : files::statusAt(folder->descriptor(), path.filename().c_str());
    if (item.code() == ENOENT || item.code() == ENOTDIR) {
        return {true, {}};
    }
    // What cannot be looked at is not refused here: the removal says why it stays.
    const QString reason = reasonToKeep(path, item ? *item : files::NodeStatus(), item ? expected : ExpectedNode());
    if (!reason.isEmpty()) {
        return {false, reason};
    }
    if (isLog && item) {
        return isWrittenLog ? emptied(*folder, path, expected.identity) : removeLog(*folder, path, expected.identity);
    }
    const auto holder = folder == nullptr ? identityOf(path.parent_path()) : folderFoundIn_->folder;
    const auto record = TrashCleanup::recordOf(path);
    // No stop token: an item that was begun is finished.
    const auto outcome = folder == nullptr ? files::remove(path) : files::removeIn(*folder, path);
    if (outcome.end != files::RemovalEnd::gone &&
        !(isRefusedForRights(*outcome.failure) && !isLocked(path) && isStillAt(path.parent_path(), folder) &&
          remover_.removeFileAtPath(path, holder))) {
        trashes_.onLeft(path);
        return {false, systemText(*outcome.failure)};
    }
    // Not where the item was gone before: another one may have been trashed under its name meanwhile.
    trashes_.onRemoved(path, record);
    return {true, {}};
}

bool ItemRemover::isWrittenAt(const files::DirectoryHandle& folder, const std::filesystem::path& path) {
    const auto item = files::statusAt(folder.descriptor(), path.filename().c_str());
    return item && written_.isWritten(item->identity);
}

// Emptied first: a writer that cannot be seen, or that has just come, would keep its blocks. Then by its name, as a
// file: a folder that comes into its place meanwhile stays.
ItemRemoval ItemRemover::removeLog(const files::DirectoryHandle& folder, const std::filesystem::path& path,
                                   std::uint64_t identity) {
    const auto name = path.filename();
    const auto emptied = files::emptyFileIn(folder, name.c_str(), identity);
    const bool mayOnlyBeRead = emptied.code() == EACCES;
    if (!emptied && !mayOnlyBeRead) {
        return {false, emptied.code() == ESTALE || emptied.code() == EMLINK ? ItemRemoval::replacedText()
                                                                            : systemText({emptied.code(), path})};
    }
    const auto item = files::statusAt(folder.descriptor(), name.c_str());
    if (item.code() == ENOENT) {
        return {true, {}};
    }
    if (!item || item->identity.digest() != identity || item->linkCount != 1) {
        return {false, ItemRemoval::replacedText()};
    }
    const int code = files::removeFileIn(folder, name.c_str());
    return code == 0 || code == ENOENT ? ItemRemoval{true, {}} : ItemRemoval{false, systemText({code, path})};
}

// The privileged remover resolves the path again, and refuses another folder: then there is no need to ask the user.
bool ItemRemover::isStillAt(const std::filesystem::path& path, const files::DirectoryHandle* folder) const {
    bool isSame = folder == nullptr;
    return isSame || (openSame(path, *folderFoundIn_->folder, isSame) && isSame);
}

bool isOneName(const std::filesystem::path& name) {
    return !name.empty() && !name.has_parent_path() && name != "." && name != "..";
}

ItemRemoval removeItemAt(const std::filesystem::path& path, PrivilegedRemover& remover) {
    return ItemRemover(remover).remove(path, nullptr);
}

}  // namespace brimvault::engine
