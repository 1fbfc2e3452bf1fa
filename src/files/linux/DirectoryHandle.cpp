#include "files/DirectoryHandle.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

#include "files/SystemCall.h"

namespace brimvault::files {

namespace {

constexpr unsigned oneDirectory = O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
constexpr unsigned readable = O_RDONLY | O_NONBLOCK | oneDirectory;
// O_PATH needs no read permission: a folder that may be entered but not listed can be passed.
constexpr unsigned passThrough = O_PATH | oneDirectory;

// openat2 checks symbolic links and mounts itself. Kernels before 5.6 lack it, and some sandboxes forbid it.
int openAtOnce(int directory, const char* path, unsigned flags, std::uint64_t resolve) {
    open_how how{};
    how.flags = flags;
    how.resolve = resolve;
    return static_cast<int>(uninterrupted([&] { return ::syscall(SYS_openat2, directory, path, &how, sizeof how); }));
}

int openStep(int directory, const char* name, unsigned flags) {
    return uninterrupted([&] { return ::openat(directory, name, static_cast<int>(flags)); });
}

bool canOpenAtOnce() {
    static const bool can = [] {
        const int root = openAtOnce(AT_FDCWD, "/", passThrough, RESOLVE_NO_SYMLINKS);
        if (root >= 0) {
            ::close(root);
        }
        // Any other failure says nothing about the next call.
        return root >= 0 || (errno != ENOSYS && errno != EPERM && errno != EINVAL && errno != E2BIG);
    }();
    return can;
}

void closeKeepingCode(int descriptor, int code) {
    ::close(descriptor);
    errno = code;
}

int openStepwiseOnSameMount(int directory, const char* name) {
    const auto holder = statusAt(directory, "");
    if (!holder) {
        errno = holder.code();
        return -1;
    }
    const int opened = openStep(directory, name, readable);
    if (opened < 0) {
        return -1;
    }
    const auto status = statusAt(opened, "");
    if (!status || status->mount == 0 || status->mount != holder->mount) {
        closeKeepingCode(opened, status ? EXDEV : status.code());
        return -1;
    }
    return opened;
}

int openStepwiseWithoutLinks(const char* path) {
    int opened = openStep(AT_FDCWD, "/", passThrough);
    for (const auto& part : std::filesystem::path(path).relative_path()) {
        if (opened < 0) {
            return -1;
        }
        if (part.empty()) {
            continue;  // a slash at the end
        }
        const int next = openStep(opened, part.c_str(), passThrough);
        closeKeepingCode(opened, errno);
        opened = next;
    }
    return opened;
}

// The system says ELOOP of a symbolic link that it was told not to follow.
int enotdirForLinks(int opened) {
    if (opened < 0 && errno == ELOOP) {
        errno = ENOTDIR;
    }
    return opened;
}

}  // namespace

int DirectoryHandle::openChildWithoutLinks(int directory, const char* name) {
    return enotdirForLinks(openStep(directory, name, passThrough));
}

int DirectoryHandle::openOnSameMount(int directory, const char* name) {
    return enotdirForLinks(canOpenAtOnce()
                               ? openAtOnce(directory, name, readable, RESOLVE_NO_XDEV | RESOLVE_NO_SYMLINKS)
                               : openStepwiseOnSameMount(directory, name));
}

int DirectoryHandle::openWithoutLinks(const char* path) {
    const int opened = canOpenAtOnce() ? openAtOnce(AT_FDCWD, path, passThrough, RESOLVE_NO_SYMLINKS) : -1;
    const bool mustWalk = opened < 0 && (!canOpenAtOnce() || errno == ENAMETOOLONG);  // longer than one call takes
    return enotdirForLinks(mustWalk ? openStepwiseWithoutLinks(path) : opened);
}

}  // namespace brimvault::files
