#include "files/removal/Remove.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <functional>
#include <mutex>
#include <new>
#include <utility>

#include "files/SystemCall.h"
#include "files/removal/OwnFolders.h"
#include "files/removal/RemovedCount.h"
#include "files/walk/SharedWalk.h"

// How a removal avoids races
//
// Paths are open to races (TOCTOU): between a check of "a/b" and the removal of "a/b", "a" can become a symbolic link
// to somewhere else, and the removal would happen there. So nothing here is removed by path. The item's parent folder
// is opened from the root on, refusing symbolic links, and held open; from there on every step works on one name in an
// open folder: open it (refusing symbolic links and other mounts), or remove it with unlinkat, which never follows a
// link. An attacker can then only make a step fail, or put something into the very tree that the user asked to remove.
// A folder of the tree can still be moved out while it is being emptied; the user asked for its removal, and its
// contents go. The walk notices when it returns to the parent, and stops.
//
// The owner of a folder that is being emptied can lack rights in it, which is how some programs keep others from
// changing their caches. Where a step is refused for that (EACCES), the folder's mode is changed through its descriptor
// and the step repeated (OwnFolders). Never with a guard, and never in the folder that holds the item.
//
// A name listed as a file that has become a folder is refused by the system (EISDIR) and reported, not chased.

namespace brimvault::files {

namespace {

enum class Kind : int { file = 0, emptyFolder = AT_REMOVEDIR };

// 0, or an errno value.
int unlinkEntry(const DirectoryHandle& parent, const char* name, Kind kind) {
    const bool isRemoved =
        uninterrupted([&] { return ::unlinkat(parent.descriptor(), name, static_cast<int>(kind)); }) == 0;
    if (isRemoved) {
        removedCount.fetch_add(1, std::memory_order_relaxed);
    }
    return isRemoved ? 0 : errno;
}

// An entry that does not exist counts as removed.
bool isGone(int code) { return code == 0 || code == ENOENT; }

// What the workers of one removal have found.
class Report {
public:
    void noteFailure(int code, const std::function<std::filesystem::path()>& path) {
        const std::lock_guard lock(mutex_);
        if (!firstFailure_) {
            firstFailure_ = Failure{code, path()};
        }
    }
    void noteItemRemoved() { isItemRemoved_ = true; }

    // Read once no worker is left.
    [[nodiscard]] const std::optional<Failure>& firstFailure() const { return firstFailure_; }
    [[nodiscard]] bool isItemRemoved() const { return isItemRemoved_; }

private:
    std::mutex mutex_;
    std::optional<Failure> firstFailure_;
    std::atomic<bool> isItemRemoved_ = false;
};

class RemovalVisitor final : public TreeVisitor {
public:
    RemovalVisitor(RemovalGuard* guard, Report& report, OwnFolders& ownFolders)
        : guard_(guard), report_(report), ownFolders_(ownFolders) {}

    [[nodiscard]] std::unique_ptr<TreeVisitor> another() override {
        return std::make_unique<RemovalVisitor>(guard_, report_, ownFolders_);
    }

    // A guard's answer about one folder must not be used for another that reuses its inode.
    [[nodiscard]] WayBack wayBack() const override {
        return guard_ != nullptr ? WayBack::byTimeOfBirth : WayBack::byNumber;
    }

    bool entersFolder(const DirectoryHandle& folder, const char* name) override {
        if (guard_ == nullptr) {
            return true;
        }
        const auto status = folder.status();
        const bool enters = status && guard_->mayRemove(*status);
        if (!enters) {
            note(status ? EPERM : status.code(), name);
        }
        return enters;
    }

    // Either the parent folder keeps its owner from entering any folder, or this one does.
    Result<DirectoryHandle> openRefused(const DirectoryHandle& parent, const char* name) override {
        auto opened = Result<DirectoryHandle>::failed(EACCES);
        if (admits(parent)) {
            opened = parent.openChild(name);
        }
        return opened.code() == EACCES && guard_ == nullptr ? ownFolders_.open(parent, name, change_)
                                                            : std::move(opened);
    }

    void onFolderEntered(const DirectoryHandle& /*folder*/) override {
        if (const auto change = std::exchange(change_, {})) {
            ownFolders_.keep(*place(), *change);
        }
    }

    void onFile(const DirectoryHandle& folder, const char* name, NodeKind /*kind*/) override {
        if (const int code = unlinkIn(folder, name, Kind::file); !isGone(code)) {
            note(code, name);
        }
    }

    // Asks the guard again about what has the name by now: another empty folder may have been put there.
    void onFolderLeft(const DirectoryHandle& parent, const VisitedFolder& folder,
                      const DirectoryHandle& left) override {
        const char* name = folder.name.c_str();
        const int code = mayStillRemove(parent, name) ? unlinkIn(parent, name, Kind::emptyFolder) : EPERM;
        // It may have been moved elsewhere when nothing has its name.
        code == 0 ? ownFolders_.onGone(folder) : ownFolders_.onStay(folder, left);
        if (!isGone(code)) {
            note(reason(code, folder.listingCode), name);
        } else if (folder.holder == nullptr) {
            report_.noteItemRemoved();
        }
    }

    // A folder that may not be read can still be removed when it is empty; not with a guard, which could not be asked
    // about it.
    void onFolderClosed(const DirectoryHandle& parent, const char* name, int code) override {
        if (code == ENOENT) {
            return;
        }
        if (code == EXDEV) {
            note(EBUSY, name);  // what the system itself says of a mount point
        } else if (guard_ != nullptr) {
            note(code, name);
        } else if (const int refusal = unlinkIn(parent, name, Kind::emptyFolder); !isGone(refusal)) {
            note(reason(refusal, code), name);
        } else if (isBeforeFirstFolder()) {
            report_.noteItemRemoved();
        }
    }

    void onWayLost(const char* name, int code) override { note(code, name); }

private:
    void note(int code, const char* name) {
        report_.noteFailure(code, [&] { return pathOf(name); });
    }

    // Of a file or an empty folder in the folder where the walk is.
    int unlinkIn(const DirectoryHandle& parent, const char* name, Kind kind) {
        const int code = unlinkEntry(parent, name, kind);
        return code == EACCES && admits(parent) ? unlinkEntry(parent, name, kind) : code;
    }

    // Whether what was refused in the folder where the walk is may be tried again.
    bool admits(const DirectoryHandle& folder) {
        return guard_ == nullptr && place() != nullptr && ownFolders_.admit(folder, *place());
    }

    // "Not empty" is only the consequence where the folder could not be read to its end: report that error instead.
    [[nodiscard]] static int reason(int refusal, int reading) {
        const bool isNotEmpty = refusal == ENOTEMPTY || refusal == EEXIST;
        return isNotEmpty && reading != 0 ? reading : refusal;
    }

    [[nodiscard]] bool mayStillRemove(const DirectoryHandle& parent, const char* name) const {
        if (guard_ == nullptr) {
            return true;
        }
        const auto status = statusAt(parent.descriptor(), name);
        return status ? guard_->mayRemove(*status) : status.code() == ENOENT;
    }

    RemovalGuard* guard_;
    Report& report_;
    OwnFolders& ownFolders_;
    std::optional<OwnFolders::Change> change_;  ///< of the folder that is about to be entered
};

RemovalOutcome kept(int code, const std::filesystem::path& path) { return {RemovalEnd::kept, Failure{code, path}}; }

// With a guard on one thread, which asks it in a fixed order.
bool visit(RemovalVisitor& visitor, const DirectoryHandle& parent, const char* name, const std::stop_token& stop,
           bool isGuarded) {
    return isGuarded ? TreeWalk(visitor, parent, stop).visit(name) : SharedWalk(visitor, stop).visit(parent, name);
}

RemovalOutcome removeFolder(const DirectoryHandle& parent, const std::filesystem::path& path,
                            const std::stop_token& stop, RemovalGuard* guard) {
    Report report;
    const auto name = path.filename();
    const bool toItsEnd = [&] {
        OwnFolders ownFolders(parent);
        RemovalVisitor visitor(guard, report, ownFolders);
        return visit(visitor, parent, name.c_str(), stop, guard != nullptr);
    }();
    // Neither a stop nor a failure on the way matters when the item went all the same.
    const int code = statusAt(parent.descriptor(), name.c_str()).code();
    if (code == ENOENT || (code != 0 && report.isItemRemoved())) {
        return {RemovalEnd::gone, std::nullopt};
    }
    if (!toItsEnd) {
        return {RemovalEnd::cancelled, std::nullopt};
    }
    // Without a failure, nobody knows what is there, or someone has put something new under the name.
    const auto first = report.firstFailure().value_or(Failure{code != 0 ? code : EEXIST, name});
    return kept(first.code, path.parent_path() / first.path);
}

RemovalOutcome removeOfKind(NodeKind kind, const DirectoryHandle& parent, const std::filesystem::path& path,
                            const std::stop_token& stop, RemovalGuard* guard) {
    if (kind == NodeKind::directory) {
        return removeFolder(parent, path, stop, guard);
    }
    const int code = unlinkEntry(parent, path.filename().c_str(), Kind::file);
    return isGone(code) ? RemovalOutcome{RemovalEnd::gone, std::nullopt} : kept(code, path);
}

RemovalOutcome removeNow(const std::filesystem::path& path, const std::stop_token& stop, RemovalGuard* guard) {
    if (!isPlainAbsolute(path)) {
        return kept(EINVAL, path);
    }
    if (stop.stop_requested()) {
        return {RemovalEnd::cancelled, std::nullopt};
    }
    DirectoryHandle::OnWay onWay;
    if (guard != nullptr) {
        onWay = [guard](const auto& folder, const auto& status) { return guard->onWay(folder, status); };
    }
    const auto parent = DirectoryHandle::open(path.parent_path(), onWay);
    const auto missing = [&]() -> RemovalOutcome {
        // What a guard keeps may not even be asked for.
        const bool mayTell = guard == nullptr || guard->mayRemove({});
        return mayTell ? RemovalOutcome{RemovalEnd::gone, std::nullopt} : kept(EPERM, path);
    };
    if (!parent) {
        return parent.code() == ENOENT ? missing() : kept(parent.code(), path);
    }
    const auto status = statusAt(parent->descriptor(), path.filename().c_str());
    if (!status) {
        return status.code() == ENOENT ? missing() : kept(status.code(), path);
    }
    // Before the item is opened: whatever it is exchanged for, the folder that holds it stays the same.
    if (guard != nullptr && !guard->mayRemove(*status)) {
        return kept(EPERM, path);
    }
    return removeOfKind(status->kind, *parent, path, stop, guard);
}

RemovalOutcome removeInNow(const DirectoryHandle& folder, const std::filesystem::path& path,
                           const std::stop_token& stop) {
    if (!isPlainAbsolute(path)) {
        return kept(EINVAL, path);
    }
    const auto status = statusAt(folder.descriptor(), path.filename().c_str());
    if (!status) {
        return status.code() == ENOENT ? RemovalOutcome{RemovalEnd::gone, std::nullopt} : kept(status.code(), path);
    }
    return removeOfKind(status->kind, folder, path, stop, nullptr);
}

}  // namespace

std::uint64_t entriesRemoved() { return removedCount.load(std::memory_order_relaxed); }

bool isPlainAbsolute(const std::filesystem::path& path) {
    const auto names = path.relative_path();
    const bool hasZeroByte = path.native().find('\0') != std::string::npos;  // the system would see another path
    return path.is_absolute() && path.has_filename() && !hasZeroByte &&
           std::none_of(names.begin(), names.end(),
                        [](const auto& name) { return name.empty() || name == "." || name == ".."; });
}

RemovalOutcome remove(const std::filesystem::path& path, const std::stop_token& stop, RemovalGuard* guard) {
    try {
        return removeNow(path, stop, guard);
    } catch (const std::bad_alloc&) {
        return kept(ENOMEM, path);
    }
}

RemovalOutcome removeIn(const DirectoryHandle& folder, const std::filesystem::path& path, const std::stop_token& stop) {
    try {
        return removeInNow(folder, path, stop);
    } catch (const std::bad_alloc&) {
        return kept(ENOMEM, path);
    }
}

int removeFileIn(const DirectoryHandle& folder, const char* name) { return unlinkEntry(folder, name, Kind::file); }

}  // namespace brimvault::files
