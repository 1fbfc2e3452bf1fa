#include "files/trees/Inspect.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

#include "files/FileDescriptor.h"
#include "files/SystemCall.h"
#include "files/walk/SharedWalk.h"

namespace brimvault::files {

std::string beginningOf(const DirectoryHandle& folder, const char* name, std::size_t length) {
    const auto status = statusAt(folder.descriptor(), name);
    if (!status || status->kind != NodeKind::regular) {
        return {};
    }
    constexpr int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const FileDescriptor file(uninterrupted([&] { return ::openat(folder.descriptor(), name, flags); }));
    std::string bytes(length, '\0');
    const auto read = file.isOpen() ? uninterrupted([&] { return ::read(file.number(), bytes.data(), length); }) : 0;
    bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(read, 0)));
    return bytes;
}

namespace {

// What each version control system keeps in a working copy.
constexpr std::array<std::pair<std::string_view, const char*>, 5> marks = {
    {{".git", "/HEAD"}, {".hg", "/store"}, {".svn", "/wc.db"}, {".bzr", "/branch-format"}, {".jj", "/repo"}}};

bool isWorkingCopyMark(const DirectoryHandle& parent, const char* name) {
    if (name[0] != '.') {
        return false;
    }
    const auto mark =
        std::find_if(marks.begin(), marks.end(), [name](const auto& known) { return known.first == name; });
    return mark != marks.end() && statusAt(parent.descriptor(), (std::string(name) + mark->second).c_str());
}

// A working copy whose repository lies elsewhere: a worktree or a submodule, or one whose folder was moved away.
bool isWorkingCopyFile(const DirectoryHandle& folder, const char* name, NodeKind kind) {
    constexpr std::string_view beginning = "gitdir:";
    return name[0] == '.' && std::string_view(name) == ".git" &&
           (kind == NodeKind::link || beginningOf(folder, name, beginning.size()) == beginning);
}

// The findings of all visitors of one tree.
class Gathered {
public:
    void add(const ItemFindings& more) {
        const std::lock_guard lock(mutex_);
        all_.logical += more.logical;
        all_.space.add(more.space);
        all_.isSpecial |= more.isSpecial;
        all_.isForeign |= more.isForeign;
        all_.holdsUnseen |= more.holdsUnseen;
        all_.holdsMount |= more.holdsMount;
        all_.holdsSocket |= more.holdsSocket;
        all_.holdsWorkingCopy |= more.holdsWorkingCopy;
        all_.openBy = all_.openBy != 0 ? all_.openBy : more.openBy;
        all_.identity = all_.identity != 0 ? all_.identity : more.identity;
        all_.changed = std::max(all_.changed, more.changed);
    }
    [[nodiscard]] ItemFindings all() {
        all_.space.settle();
        return std::move(all_);
    }

private:
    std::mutex mutex_;
    ItemFindings all_;
};

class InspectingVisitor final : public TreeVisitor {
public:
    InspectingVisitor(const InspectionContext& context, Gathered& gathered) : context_(context), gathered_(gathered) {}
    InspectingVisitor(const InspectingVisitor&) = delete;
    InspectingVisitor& operator=(const InspectingVisitor&) = delete;
    ~InspectingVisitor() override { gathered_.add(found_); }

    [[nodiscard]] std::unique_ptr<TreeVisitor> another() override {
        return std::make_unique<InspectingVisitor>(context_, gathered_);
    }
    [[nodiscard]] FileVisits fileVisits() const override { return FileVisits::whileListing; }

    bool wantsFolder(const DirectoryHandle& parent, const char* name) override {
        noteMark(parent, name);
        return true;
    }
    void onFolderEntered(const DirectoryHandle& folder) override {
        const auto status = folder.status();
        if (status) {
            noteHolder(status->identity);
            found_.space.add(NamedNode::of(*status));
            found_.identity = isInFirstFolder() ? status->identity.digest() : found_.identity;
            found_.changed = std::max(found_.changed, status->modified);
            found_.isForeign = found_.isForeign || status->owner != context_.user;
        }
    }
    void onFile(const DirectoryHandle& folder, const char* name, NodeKind /*kind*/) override {
        const auto status = statusAt(folder.descriptor(), name);
        if (isBeforeFirstFolder()) {
            noteItem(status);
        }
        if (status) {
            add(*status);
            found_.holdsWorkingCopy = found_.holdsWorkingCopy || isWorkingCopyFile(folder, name, status->kind);
        }
    }
    void onFolderClosed(const DirectoryHandle& parent, const char* name, int code) override {
        if (isBeforeFirstFolder()) {
            noteItem(statusAt(parent.descriptor(), name));
        }
        found_.holdsMount = found_.holdsMount || code == EXDEV;
        found_.holdsUnseen = found_.holdsUnseen || (code != EXDEV && code != ENOENT);
    }
    void onFolderLeft(const DirectoryHandle& /*parent*/, const VisitedFolder& folder,
                      const DirectoryHandle& /*left*/) override {
        found_.holdsUnseen = found_.holdsUnseen || folder.listingCode != 0;
    }
    void onWayLost(const char* /*name*/, int /*code*/) override { found_.holdsUnseen = true; }

    void noteMark(const DirectoryHandle& parent, const char* folder) {
        found_.holdsWorkingCopy = found_.holdsWorkingCopy || isWorkingCopyMark(parent, folder);
    }

private:
    // What is neither a file nor a link has no length. A file can be a mount point as well as a folder.
    void add(const NodeStatus& status) {
        if (status.mount != 0 && status.mount != context_.mount) {
            found_.holdsMount = true;
            return;
        }
        if (status.kind == NodeKind::other) {
            found_.holdsSocket = found_.holdsSocket || status.isSocket;
            return;
        }
        found_.logical += status.size;
        found_.space.add(NamedNode::of(status));
        if (status.kind == NodeKind::regular) {
            noteHolder(status.identity);
            found_.changed = std::max(found_.changed, status.modified);
        }
    }
    // Of the item itself, whatever it is.
    void noteItem(const Result<NodeStatus>& status) {
        if (status) {
            found_.isSpecial = status->kind == NodeKind::other;
            found_.isForeign = status->owner != context_.user;
            found_.identity = status->identity.digest();
            found_.changed = std::max(found_.changed, status->modified);
        }
    }
    void noteHolder(const FileIdentity& identity) {
        if (found_.openBy == 0) {
            found_.openBy = context_.open.holderOf(identity).value_or(0);
        }
    }

    const InspectionContext& context_;
    Gathered& gathered_;
    ItemFindings found_;
};

}  // namespace

ItemFindings inspectEntry(const DirectoryHandle& folder, const DirectoryEntry& entry, const InspectionContext& context,
                          const std::stop_token& stop) {
    Gathered gathered;
    {
        InspectingVisitor visitor(context, gathered);
        if (entry.kind == NodeKind::directory) {
            visitor.noteMark(folder, entry.name);
            (void)SharedWalk(visitor, stop).visit(folder, entry.name);
        } else {
            visitor.onFile(folder, entry.name, entry.kind);
        }
    }
    return gathered.all();
}

bool isWorkingCopy(const DirectoryHandle& folder) {
    const auto status = statusAt(folder.descriptor(), ".git");
    return std::any_of(marks.begin(), marks.end(),
                       [&](const auto& mark) { return isWorkingCopyMark(folder, mark.first.data()); }) ||
           (status && isWorkingCopyFile(folder, ".git", status->kind));
}

bool isTaggedAsCache(const DirectoryHandle& folder) {
    constexpr std::string_view signature = "Signature: 8a477f597d28d172789f06886806bc55";
    return beginningOf(folder, "CACHEDIR.TAG", signature.size()) == signature;
}

}  // namespace brimvault::files
