#include "files/DirectoryHandle.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace brimvault::files {

Result<DirectoryHandle> DirectoryHandle::adopt(int descriptor) {
    return descriptor < 0 ? Result<DirectoryHandle>::failed(errno) : DirectoryHandle(descriptor);
}

Result<DirectoryHandle> DirectoryHandle::open(const std::filesystem::path& path, const OnWay& onWay) {
    const auto names = path.relative_path();
    if (!path.is_absolute() || std::find(names.begin(), names.end(), "..") != names.end()) {
        return Result<DirectoryHandle>::failed(EINVAL);
    }
    return onWay ? openStepwise(path, onWay) : adopt(openWithoutLinks(path.c_str()));
}

Result<DirectoryHandle> DirectoryHandle::openForReading(const std::filesystem::path& path) {
    auto passed = open(path);
    return passed ? passed->reopenForReading() : std::move(passed);
}

// Name by name: `onWay` is asked about the very folders that were passed.
Result<DirectoryHandle> DirectoryHandle::openStepwise(const std::filesystem::path& path, const OnWay& onWay) {
    auto handle = adopt(openWithoutLinks("/"));
    auto name = path.relative_path();
    for (auto part = name.begin();; ++part) {
        if (!handle) {
            return handle;
        }
        const auto status = handle->status();
        if (!status) {
            return Result<DirectoryHandle>::failed(status.code());
        }
        if (!onWay(*handle, *status)) {
            return Result<DirectoryHandle>::failed(EPERM);
        }
        while (part != name.end() && (part->empty() || *part == ".")) {
            ++part;
        }
        if (part == name.end()) {
            return handle;
        }
        handle = adopt(openChildWithoutLinks(handle->descriptor(), part->c_str()));
    }
}

Result<DirectoryHandle> DirectoryHandle::openChild(const char* name) const {
    return adopt(openOnSameMount(descriptor(), name));
}

Result<DirectoryHandle> DirectoryHandle::openChildToPass(const char* name) const {
    return adopt(openChildWithoutLinks(descriptor(), name));
}

Result<DirectoryHandle> DirectoryHandle::reopenForReading() const { return adopt(openOnSameMount(descriptor(), ".")); }

Result<DirectoryHandle> DirectoryHandle::duplicate() const { return adopt(::fcntl(descriptor(), F_DUPFD_CLOEXEC, 0)); }

Result<DirectoryHandle> DirectoryHandle::openParent(const NodePlace& expected) const {
    auto parent = adopt(openOnSameMount(descriptor(), ".."));
    const auto status = parent ? parent->status() : Result<NodeStatus>::failed(parent.code());
    if (!status) {
        return Result<DirectoryHandle>::failed(status.code() == EXDEV ? ESTALE : status.code());
    }
    return status->place() == expected ? std::move(parent) : Result<DirectoryHandle>::failed(ESTALE);
}

int DirectoryHandle::forEachEntry(const std::function<bool(const DirectoryEntry&)>& call) const {
    if (::lseek(descriptor(), 0, SEEK_SET) != 0) {  // an earlier reading may have gone on from here
        return errno;
    }
    return DirectoryReader().forEachEntry(descriptor(), call);
}

int forEachChild(const std::filesystem::path& folder, HiddenEntries hidden,
                 const std::function<bool(const DirectoryEntry&)>& call) {
    const auto opened = DirectoryHandle::openForReading(folder);
    return opened ? forEachChild(*opened, hidden, call) : opened.code();
}

int forEachChild(const DirectoryHandle& folder, HiddenEntries hidden,
                 const std::function<bool(const DirectoryEntry&)>& call) {
    return folder.forEachEntry([&](const DirectoryEntry& entry) {
        return (hidden == HiddenEntries::skip && entry.name[0] == '.') || call(entry);
    });
}

}  // namespace brimvault::files
