#include "files/DirectoryHandle.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <string_view>

namespace brimvault::files {

namespace {

constexpr int oneDirectory = O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
// Passing through a folder asks for less than reading it: one that may be entered but not listed is passed.
#ifdef O_PATH
constexpr int passThrough = O_PATH | oneDirectory;
#else
constexpr int passThrough = O_SEARCH | oneDirectory;
#endif
constexpr int readable = O_RDONLY | O_NONBLOCK | oneDirectory;

NodeKind kindOf(int directory, const dirent& entry) {
    switch (entry.d_type) {
        case DT_REG:
            return NodeKind::regular;
        case DT_DIR:
            return NodeKind::directory;
        case DT_LNK:
            return NodeKind::link;
        case DT_UNKNOWN: {  // some file systems keep no kinds in their listings
            const auto status = statusAt(directory, entry.d_name);
            return status ? status->kind : NodeKind::other;
        }
        default:
            return NodeKind::other;
    }
}

bool isSelfOrParent(std::string_view name) { return name == "." || name == ".."; }

}  // namespace

Result<DirectoryHandle> DirectoryHandle::adopt(int descriptor) {
    if (descriptor < 0) {
        return Result<DirectoryHandle>::failed(errno);
    }
    DirectoryHandle handle(descriptor, {});
    const auto status = statusAt(descriptor, "");
    if (!status) {
        return Result<DirectoryHandle>::failed(status.code());
    }
    handle.status_ = *status;
    return handle;
}

Result<DirectoryHandle> DirectoryHandle::open(const std::filesystem::path& path, const OnWay& onWay) {
    if (!path.is_absolute()) {
        return Result<DirectoryHandle>::failed(EINVAL);
    }
    const auto entered = [&](Result<DirectoryHandle> folder) {
        if (folder && onWay) {
            onWay(folder->status_);
        }
        return folder;
    };
    auto handle = entered(adopt(::open("/", passThrough)));
    for (const auto& part : path.relative_path()) {
        if (!handle) {
            return handle;
        }
        if (part.empty() || part == ".") {
            continue;
        }
        if (part == "..") {
            return Result<DirectoryHandle>::failed(EINVAL);
        }
        handle = entered(adopt(::openat(handle->descriptor_, part.c_str(), passThrough)));
    }
    return handle;
}

DirectoryHandle& DirectoryHandle::operator=(DirectoryHandle&& other) noexcept {
    if (this != &other) {
        close();
        descriptor_ = std::exchange(other.descriptor_, -1);
        status_ = other.status_;
    }
    return *this;
}

void DirectoryHandle::close() {
    if (descriptor_ >= 0) {
        ::close(std::exchange(descriptor_, -1));
    }
}

Result<DirectoryHandle> DirectoryHandle::openChild(const char* name) const {
    auto child = adopt(::openat(descriptor_, name, readable));
    if (child && (child->status_.mount == 0 || child->status_.mount != status_.mount)) {
        return Result<DirectoryHandle>::failed(EXDEV);
    }
    return child;
}

Result<DirectoryHandle> DirectoryHandle::reopenForReading() const {
    return adopt(::openat(descriptor_, ".", readable));
}

Result<DirectoryHandle> DirectoryHandle::openParent(const NodeStatus& expected) const {
    auto parent = adopt(::openat(descriptor_, "..", readable));
    if (parent && (parent->status_.identity != expected.identity || parent->status_.mount != expected.mount)) {
        return Result<DirectoryHandle>::failed(ESTALE);
    }
    return parent;
}

int DirectoryHandle::forEachEntry(const std::function<bool(const DirectoryEntry&)>& call) const {
    const int copy = ::fcntl(descriptor_, F_DUPFD_CLOEXEC, 0);  // the stream closes what it is given
    if (copy < 0) {
        return errno;
    }
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::fdopendir(copy), [](DIR* open) { return ::closedir(open); });
    if (!stream) {
        const int code = errno;
        ::close(copy);
        return code;
    }
    ::rewinddir(stream.get());  // the copy shares its place in the listing with an earlier reading
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(stream.get());
        if (entry == nullptr) {
            return errno;
        }
        if (!isSelfOrParent(entry->d_name) && !call({entry->d_name, kindOf(descriptor_, *entry)})) {
            return 0;
        }
    }
}

int forEachChild(const std::filesystem::path& folder, HiddenEntries hidden,
                 const std::function<bool(const DirectoryEntry&)>& call) {
    const auto passed = DirectoryHandle::open(folder);
    if (!passed) {
        return passed.code();
    }
    const auto opened = passed->reopenForReading();
    if (!opened) {
        return opened.code();
    }
    return opened->forEachEntry([&](const DirectoryEntry& entry) {
        return (hidden == HiddenEntries::skip && entry.name[0] == '.') || call(entry);
    });
}

}  // namespace brimvault::files
