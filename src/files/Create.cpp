#include "files/Create.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "files/SystemCall.h"

namespace brimvault::files {

Result<DirectoryHandle> openOrMakeFolder(const std::filesystem::path& folder) {
    using Folder = Result<DirectoryHandle>;
    auto opened = DirectoryHandle::open(folder);
    if (opened.code() != ENOENT || !folder.has_relative_path()) {
        return opened;
    }
    const auto parent = openOrMakeFolder(folder.parent_path());
    if (!parent) {
        return Folder::failed(parent.code());
    }
    if (::mkdirat(parent->descriptor(), folder.filename().c_str(), S_IRWXU) != 0 && errno != EEXIST) {
        return Folder::failed(errno);
    }
    return DirectoryHandle::open(folder);
}

Result<FileDescriptor> createFile(const DirectoryHandle& folder, const std::string& name, std::uint32_t permissions) {
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    FileDescriptor file(
        uninterrupted([&] { return ::openat(folder.descriptor(), name.c_str(), flags, S_IRUSR | S_IWUSR); }));
    if (!file.isOpen()) {
        return Result<FileDescriptor>::failed(errno);
    }
    // Through the descriptor: by now something else may have the name. FAT has no permissions, and refuses.
    (void)::fchmod(file.number(), permissions);
    return file;
}

int writeAll(const FileDescriptor& file, std::string_view text) {
    while (!text.empty()) {
        const auto written = uninterrupted([&] { return ::write(file.number(), text.data(), text.size()); });
        if (written <= 0) {
            return written < 0 ? errno : ENOSPC;
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

}  // namespace brimvault::files
