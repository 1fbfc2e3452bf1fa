#include "files/NodeStatus.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <fstream>
#include <string>

#include "files/SystemCall.h"
#include "files/linux/StatxFields.h"

namespace brimvault::files {

namespace {

// A lookup must not trigger an automount.
constexpr int lookOnly = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_SYNC_AS_STAT;
constexpr unsigned wanted = STATX_BASIC_STATS | STATX_BTIME | STATX_MNT_ID;

int flagsFor(const char* name) { return lookOnly | (*name == '\0' ? AT_EMPTY_PATH : 0); }

NodeKind kindOf(unsigned mode) {
    if (S_ISREG(mode)) {
        return NodeKind::regular;
    }
    if (S_ISDIR(mode)) {
        return NodeKind::directory;
    }
    return S_ISLNK(mode) ? NodeKind::link : NodeKind::other;
}

std::chrono::system_clock::time_point timeOf(const statx_timestamp& time) {
    return std::chrono::system_clock::time_point(std::chrono::seconds(time.tv_sec) +
                                                 std::chrono::nanoseconds(time.tv_nsec));
}

// Before kernel 5.8 statx has no mount ID; /proc shows it for an open descriptor.
std::uint64_t mountFromDescriptor(int descriptor) {
    std::ifstream info("/proc/self/fdinfo/" + std::to_string(descriptor));
    for (std::string line; std::getline(info, line);) {
        unsigned long long mount = 0;
        if (std::sscanf(line.c_str(), "mnt_id: %llu", &mount) == 1) {
            return mount;
        }
    }
    return 0;
}

}  // namespace

Result<NodeStatus> statusAt(int directory, const char* name) {
    struct statx raw {};
    if (uninterrupted([&] { return ::statx(directory, name, flagsFor(name), wanted, &raw); }) != 0) {
        return Result<NodeStatus>::failed(errno);
    }
    NodeStatus status;
    status.identity.device = deviceNumber(raw);
    status.identity.inode = raw.stx_ino;
    if ((raw.stx_mask & STATX_MNT_ID) != 0) {
        status.mount = raw.stx_mnt_id;
    } else if (*name == '\0') {
        status.mount = mountFromDescriptor(directory);
    }
    status.kind = kindOf(raw.stx_mode);
    status.isSocket = S_ISSOCK(raw.stx_mode);
    status.size = raw.stx_size;
    status.allocated = allocatedBytes(raw);
    status.linkCount = status.kind == NodeKind::directory ? 1 : raw.stx_nlink;
    status.immutable = (raw.stx_attributes & (STATX_ATTR_IMMUTABLE | STATX_ATTR_APPEND)) != 0;
    constexpr unsigned permissionBits = 07777;
    status.permissions = raw.stx_mode & permissionBits;
    status.owner = raw.stx_uid;
    status.group = raw.stx_gid;
    status.modified = timeOf(raw.stx_mtime);
    status.accessed = timeOf(raw.stx_atime);
    status.changed = timeOf(raw.stx_ctime);
    if ((raw.stx_mask & STATX_BTIME) != 0) {
        status.identity.born = timeOf(raw.stx_btime);
    }
    return status;
}

Result<EntrySize> sizeAt(int directory, const char* name) {
    struct statx raw {};
    constexpr unsigned mask = STATX_TYPE | STATX_SIZE | STATX_BLOCKS | STATX_INO | STATX_NLINK | STATX_MNT_ID;
    if (uninterrupted([&] { return ::statx(directory, name, flagsFor(name), mask, &raw); }) != 0) {
        return Result<EntrySize>::failed(errno);
    }
    return EntrySize{.logical = raw.stx_size,
                     .allocated = allocatedBytes(raw),
                     .mount = (raw.stx_mask & STATX_MNT_ID) != 0 ? raw.stx_mnt_id : 0,
                     .device = deviceNumber(raw),
                     .inode = raw.stx_ino,
                     .linkCount = S_ISDIR(raw.stx_mode) ? 1 : raw.stx_nlink};
}

Result<NodeStatus> statusOf(const std::filesystem::path& path) {
    if (path.empty()) {
        return Result<NodeStatus>::failed(ENOENT);
    }
    return statusAt(AT_FDCWD, path.c_str());
}

bool mayExist(const std::filesystem::path& path) {
    const int code = statusOf(path).code();
    return code != ENOENT && code != ENOTDIR;
}

}  // namespace brimvault::files
