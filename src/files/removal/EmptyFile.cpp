#include "files/removal/EmptyFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "files/FileDescriptor.h"
#include "files/NodeStatus.h"
#include "files/SystemCall.h"
#include "files/removal/RemovedCount.h"

// A name can come to mean another file at any time. So all checks are made of the descriptor through which the file is
// shortened. Opening it changes nothing: without O_TRUNC, and with O_NONBLOCK, which keeps a pipe without a reader from
// blocking.

namespace brimvault::files {

namespace {

// Such codes say that something else than a regular file has the name: a link, a folder, a pipe or a socket.
int codeOfOpening(int code) { return code == ELOOP || code == EISDIR || code == ENXIO ? ESTALE : code; }

// 0 if the file may be emptied.
int reasonToRefuse(const NodeStatus& file, const NodeStatus& folder, std::uint64_t identity) {
    if (file.kind != NodeKind::regular || file.identity.digest() != identity) {
        return ESTALE;
    }
    if (file.mount == 0 || file.mount != folder.mount) {
        return EXDEV;
    }
    if (file.owner != ::geteuid()) {
        return EPERM;
    }
    return file.linkCount == 1 ? 0 : EMLINK;
}

}  // namespace

Result<EmptiedFile> emptyFileIn(const DirectoryHandle& folder, const char* name, std::uint64_t identity) {
    constexpr int flags = O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const FileDescriptor file(uninterrupted([&] { return ::openat(folder.descriptor(), name, flags); }));
    if (!file.isOpen()) {
        return Result<EmptiedFile>::failed(codeOfOpening(errno));
    }
    const auto before = statusAt(file.number(), "");
    const auto holder = folder.status();
    if (!before || !holder) {
        return Result<EmptiedFile>::failed(before ? holder.code() : before.code());
    }
    if (const int code = reasonToRefuse(*before, *holder, identity); code != 0) {
        return Result<EmptiedFile>::failed(code);
    }
    if (uninterrupted([&] { return ::ftruncate(file.number(), 0); }) != 0) {
        return Result<EmptiedFile>::failed(errno);
    }
    removedCount.fetch_add(1, std::memory_order_relaxed);
    const auto after = statusAt(file.number(), "");
    return EmptiedFile{before->allocated, after ? after->allocated : 0};
}

}  // namespace brimvault::files
