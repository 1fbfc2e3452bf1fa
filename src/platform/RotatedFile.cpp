#include "platform/RotatedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "files/DirectoryHandle.h"
#include "files/FileDescriptor.h"
#include "files/SystemCall.h"

namespace brimvault::platform {

namespace {

namespace fs = std::filesystem;

constexpr mode_t ownFolder = 0700;
constexpr mode_t ownFile = 0600;

// The folders above may be reached through links of the user's own arrangement; the last one is the program's.
files::Result<files::DirectoryHandle> madeFolder(const fs::path& folder) {
    fs::path above;
    for (const auto& part : folder.parent_path()) {
        above /= part;
        (void)::mkdir(above.c_str(), ownFolder);
    }
    std::error_code unresolved;
    const auto resolved = fs::canonical(above, unresolved);
    if (unresolved) {
        return files::Result<files::DirectoryHandle>::failed(unresolved.value());
    }
    (void)::mkdir((resolved / folder.filename()).c_str(), ownFolder);
    return files::DirectoryHandle::open(resolved / folder.filename());
}

struct OpenFile {
    files::FileDescriptor file;
    off_t size = 0;
};

files::Result<OpenFile> opened(const files::DirectoryHandle& folder, const std::string& name) {
    constexpr int flags = O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    OpenFile open{files::FileDescriptor(
        files::uninterrupted([&] { return ::openat(folder.descriptor(), name.c_str(), flags, ownFile); }))};
    struct stat status {};
    if (!open.file.isOpen() || ::fstat(open.file.number(), &status) != 0) {
        return files::Result<OpenFile>::failed(errno);
    }
    if (!S_ISREG(status.st_mode) || status.st_nlink != 1 || ::fchmod(open.file.number(), ownFile) != 0) {
        return files::Result<OpenFile>::failed(EPERM);
    }
    open.size = status.st_size;
    return open;
}

// A part that a full disk has taken is cut off again, so that the next line does not begin in the middle of one.
int writeAll(const OpenFile& open, std::string_view text) {
    while (!text.empty()) {
        const auto written =
            files::uninterrupted([&] { return ::write(open.file.number(), text.data(), text.size()); });
        if (written <= 0) {
            const int code = written < 0 ? errno : ENOSPC;
            (void)!::ftruncate(open.file.number(), open.size);
            return code;
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

}  // namespace

int RotatedFile::append(std::string_view text) const {
    const auto folder = madeFolder(folder_);
    if (!folder) {
        return folder.code();
    }
    auto file = opened(*folder, name_);
    if (file && file->size > 0 && static_cast<std::size_t>(file->size) + text.size() > maxBytes_) {
        if (::renameat(folder->descriptor(), name_.c_str(), folder->descriptor(), old_.c_str()) != 0) {
            return errno;
        }
        file = opened(*folder, name_);
    }
    return file ? writeAll(*file, text) : file.code();
}

}  // namespace brimvault::platform
