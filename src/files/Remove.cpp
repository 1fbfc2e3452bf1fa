#include "files/Remove.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "files/TreeWalk.h"

// How a removal keeps to what was looked at
//
// A path is a promise that anyone may break: between a look at "a/b" and the removal of "a/b", "a" can become a link to
// somewhere else, and the removal would happen there. So nothing here is removed by path. The folder that holds the
// item is reached from the root one name at a time, refusing links, and then held open; from there on every step takes
// one name of a held folder: open it (refusing links and other mounts), or take it away with unlinkat, which never
// follows a link. An exchange can then only do two things: make a step fail, or put something into the very tree that
// the user asked to remove. What stays possible is that a folder of the tree is moved out while it is being emptied; it
// was asked to be removed, and its contents go. The walk notices on its way back and stops.
//
// A name listed as a file that has become a folder is refused by the system (EISDIR) and reported, not chased.

namespace brimvault::files {

namespace {

// A folder that is not there is gone.
bool removeEmpty(const DirectoryHandle& parent, const char* name) {
    return ::unlinkat(parent.descriptor(), name, AT_REMOVEDIR) == 0 || errno == ENOENT;
}

class RemovalVisitor final : public TreeVisitor {
public:
    explicit RemovalVisitor(RemovalGuard* guard) : guard_(guard) {}

    bool entersFolder(const NodeStatus& folder, const char* name) override {
        const bool enters = guard_ == nullptr || guard_->mayRemove(folder);
        if (!enters) {
            note(EPERM, name);
        }
        return enters;
    }

    void onFile(const DirectoryHandle& folder, const char* name) override {
        if (::unlinkat(folder.descriptor(), name, 0) != 0 && errno != ENOENT) {
            note(errno, name);
        }
    }

    // Asked once more, of what has the name by now: an empty folder that was put there would go.
    void onFolderLeft(const DirectoryHandle& parent, const char* name) override {
        if (!mayStillRemove(parent, name)) {
            note(EPERM, name);
        } else if (!removeEmpty(parent, name)) {
            note(errno, name);
        }
    }

    // A folder that may not be read can still be removed when it is empty; when not, the reason is the reading. Where
    // there is a guard, it could not be asked.
    void onFolderClosed(const DirectoryHandle& parent, const char* name, int code) override {
        if (code == EXDEV) {
            note(EBUSY, name);  // what the system itself says of a mount point
            return;
        }
        const bool mayTry = guard_ == nullptr && code != ENOENT;
        const bool isGone = code == ENOENT || (mayTry && removeEmpty(parent, name));
        if (!isGone) {
            note(code, name);
        }
    }

    void onListingBroken(int code) override { note(code, nullptr); }
    void onWayLost(const char* name, int code) override { note(code, name); }

    void note(int code, const char* name) {
        if (!failure) {
            failure = Failure{code, name == nullptr ? walk->position() : walk->position() / name};
        }
    }

    std::optional<Failure> failure;
    const TreeWalk* walk = nullptr;

private:
    [[nodiscard]] bool mayStillRemove(const DirectoryHandle& parent, const char* name) const {
        if (guard_ == nullptr) {
            return true;
        }
        const auto status = statusAt(parent.descriptor(), name);
        return !status || guard_->mayRemove(*status);
    }

    RemovalGuard* guard_;
};

RemovalOutcome kept(int code, const std::filesystem::path& path) { return {RemovalEnd::kept, Failure{code, path}}; }

RemovalOutcome removeFolder(const DirectoryHandle& parent, const std::filesystem::path& path,
                            const std::stop_token& stop, RemovalGuard* guard) {
    RemovalVisitor visitor(guard);
    TreeWalk walk(visitor, stop);
    visitor.walk = &walk;
    const bool toItsEnd = walk.visit(parent, path.filename().c_str());
    // Neither a stop nor a failure on the way matters when the item went all the same.
    if (statusAt(parent.descriptor(), path.filename().c_str()).code() == ENOENT) {
        return {RemovalEnd::gone, std::nullopt};
    }
    if (!toItsEnd) {
        return {RemovalEnd::cancelled, std::nullopt};
    }
    // Without a failure, someone has put something new under the name.
    const auto first = visitor.failure.value_or(Failure{EEXIST, path.filename()});
    return kept(first.code, path.parent_path() / first.path);
}

}  // namespace

bool isPlainAbsolute(const std::filesystem::path& path) {
    const auto names = path.relative_path();
    const bool hasZeroByte = path.native().find('\0') != std::string::npos;  // the system would see another path
    return path.is_absolute() && path.has_filename() && !hasZeroByte &&
           std::none_of(names.begin(), names.end(),
                        [](const auto& name) { return name.empty() || name == "." || name == ".."; });
}

RemovalOutcome remove(const std::filesystem::path& path, const std::stop_token& stop, RemovalGuard* guard) {
    if (!isPlainAbsolute(path)) {
        return kept(EINVAL, path);
    }
    if (stop.stop_requested()) {
        return {RemovalEnd::cancelled, std::nullopt};
    }
    const auto parent = DirectoryHandle::open(path.parent_path(), [guard](const NodeStatus& folder) {
        if (guard != nullptr) {
            guard->onWay(folder);
        }
    });
    const auto missing = [&]() -> RemovalOutcome {
        // What a guard keeps may not even be asked for.
        const bool mayTell = guard == nullptr || guard->mayRemove({});
        return mayTell ? RemovalOutcome{RemovalEnd::gone, std::nullopt} : kept(EPERM, path);
    };
    if (!parent) {
        return parent.code() == ENOENT ? missing() : kept(parent.code(), path);
    }
    const auto name = path.filename();
    const auto status = statusAt(parent->descriptor(), name.c_str());
    if (!status) {
        return status.code() == ENOENT ? missing() : kept(status.code(), path);
    }
    // Before the item is opened: whatever it is exchanged for, the folder that holds it stays the same.
    if (guard != nullptr && !guard->mayRemove(*status)) {
        return kept(EPERM, path);
    }
    if (status->kind == NodeKind::directory) {
        return removeFolder(*parent, path, stop, guard);
    }
    if (::unlinkat(parent->descriptor(), name.c_str(), 0) != 0 && errno != ENOENT) {
        return kept(errno, path);
    }
    return {RemovalEnd::gone, std::nullopt};
}

}  // namespace brimvault::files
