#include "files/removal/OwnFolders.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <vector>

#include "files/removal/Permissions.h"

namespace brimvault::files {

namespace {

bool isInGroup(std::uint32_t group) {
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(::getgroups(0, nullptr), 0)));
    const int count = ::getgroups(static_cast<int>(groups.size()), groups.data());
    groups.resize(static_cast<std::size_t>(std::max(count, 0)));
    return group == ::getegid() || std::find(groups.begin(), groups.end(), group) != groups.end();
}

// Whether the mode can be changed so that it helps, and be put back: the system drops the set-group-ID bit of a folder
// whose group is not one of the caller's.
bool canBeChanged(const NodeStatus& status, std::uint32_t rights = S_IRWXU) {
    const bool isOwn = status.kind == NodeKind::directory && status.owner == ::geteuid();
    const bool wantsRights = (status.permissions & rights) != rights;
    return isOwn && wantsRights && ((status.permissions & S_ISGID) == 0 || isInGroup(status.group));
}

int giveAllRights(const DirectoryHandle& folder, const NodeStatus& status) {
    return canBeChanged(status) ? setPermissions(folder, status.permissions | S_IRWXU) : EACCES;
}

int depthOf(const VisitedFolder& folder) {
    int depth = 0;
    for (const auto* holder = folder.holder.get(); holder != nullptr; holder = holder->holder.get()) {
        ++depth;
    }
    return depth;
}

}  // namespace

int withOwnFolderWritable(const DirectoryHandle& parent, const char* name, const FileIdentity& identity,
                          const std::function<int()>& act) {
    const auto folder = parent.openChildToPass(name);
    const auto status = folder ? folder->status() : Result<NodeStatus>::failed(folder.code());
    const auto holder = parent.status();
    if (!status || !holder || status->place() != NodePlace{identity, holder->mount} || status->mount == 0 ||
        !canBeChanged(*status, S_IWUSR) || setPermissions(*folder, status->permissions | S_IWUSR) != 0) {
        return EACCES;
    }
    const int code = act();
    (void)setPermissions(*folder, status->permissions);
    return code;
}

OwnFolders::~OwnFolders() {
    try {
        putAllBack();
    } catch (const std::exception&) {  // out of memory: the folders stay as they are
        return;
    }
}

// The first worker that is refused changes the mode; the others only try again.
bool OwnFolders::admit(const DirectoryHandle& handle, const VisitedFolder& folder) {
    const std::lock_guard lock(mutex_);
    if (changed_.contains(&folder)) {
        return true;
    }
    const auto status = handle.status();
    if (!status || !canBeChanged(*status)) {
        return false;
    }
    const auto entry =
        changed_.emplace(&folder, Changed{folder.shared_from_this(), {status->place(), status->permissions}});
    if (giveAllRights(handle, *status) != 0) {
        changed_.erase(entry.first);
        return false;
    }
    hasChanged_ = true;
    return true;
}

Result<DirectoryHandle> OwnFolders::open(const DirectoryHandle& parent, const char* name,
                                         std::optional<Change>& change) {
    const auto folder = parent.openChildToPass(name);
    const auto status = folder ? folder->status() : Result<NodeStatus>::failed(folder.code());
    const auto holder = parent.status();
    if (!status || !holder) {
        return Result<DirectoryHandle>::failed(status ? holder.code() : status.code());
    }
    if (status->mount == 0 || status->mount != holder->mount) {
        return Result<DirectoryHandle>::failed(EXDEV);
    }
    if (giveAllRights(*folder, *status) != 0) {
        return Result<DirectoryHandle>::failed(EACCES);
    }
    auto opened = folder->reopenForReading();
    if (opened) {
        change = {status->place(), status->permissions};
    } else {
        (void)setPermissions(*folder, status->permissions);
    }
    return opened;
}

void OwnFolders::keep(const VisitedFolder& folder, const Change& change) {
    const std::lock_guard lock(mutex_);
    changed_.emplace(&folder, Changed{folder.shared_from_this(), change});
    hasChanged_ = true;
}

void OwnFolders::forget(const VisitedFolder& folder, const DirectoryHandle* staying) {
    if (!hasChanged_) {
        return;
    }
    const std::lock_guard lock(mutex_);
    const auto known = changed_.find(&folder);
    if (known == changed_.end()) {
        return;
    }
    if (staying != nullptr) {
        (void)setPermissions(*staying, known->second.change.permissions);
    }
    changed_.erase(known);
}

// The innermost first, which can be reached only while those around it are open to their owner.
void OwnFolders::putAllBack() const {
    std::vector<std::pair<int, const Changed*>> innermostFirst;
    for (const auto& [folder, changed] : changed_) {
        innermostFirst.emplace_back(-depthOf(*folder), &changed);
    }
    std::sort(innermostFirst.begin(), innermostFirst.end());
    auto handle = Result<DirectoryHandle>::failed(ENOENT);
    for (auto each = innermostFirst.begin(); each != innermostFirst.end(); ++each) {
        const auto& [folder, change] = *each->second;
        handle = handle ? std::move(handle) : reopen(*folder);
        const auto status = handle ? handle->status() : Result<NodeStatus>::failed(handle.code());
        const bool isIt = status && status->place() == change.place;
        // One step up where the next folder holds this one, so that a chain of them takes as many steps as it has. Its
        // owner may be kept from that once the mode is back.
        const bool isHeldByNext =
            isIt && each + 1 != innermostFirst.end() && (each + 1)->second->folder == folder->holder;
        auto next = isHeldByNext ? handle->openParent((each + 1)->second->change.place)
                                 : Result<DirectoryHandle>::failed(ENOENT);
        if (isIt) {
            (void)setPermissions(*handle, change.permissions);
        }
        handle = std::move(next);
    }
}

// Name by name from the folder that holds the item.
Result<DirectoryHandle> OwnFolders::reopen(const VisitedFolder& folder) const {
    auto handle = outermost_.duplicate();
    for (const auto& name : folder.position()) {
        handle = handle ? handle->openChild(name.c_str()) : std::move(handle);
    }
    return handle;
}

}  // namespace brimvault::files
