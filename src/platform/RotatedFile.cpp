#include "platform/RotatedFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "files/Create.h"
#include "files/SystemCall.h"

namespace brimvault::platform {

namespace {

namespace fs = std::filesystem;

constexpr mode_t ownFile = 0600;

// The folders above may be reached through links of the user's own arrangement; the last one is the program's.
files::Result<files::DirectoryHandle> madeFolder(const fs::path& folder) {
    std::error_code unresolved;
    const auto above = fs::weakly_canonical(folder.parent_path(), unresolved);
    return unresolved ? files::Result<files::DirectoryHandle>::failed(unresolved.value())
                      : files::openOrMakeFolder(above / folder.filename());
}

struct OpenFile {
    files::FileDescriptor file;
    struct stat status {};
    bool isLocked = false;  // by this process, until it is closed
};

files::Result<OpenFile> opened(const files::DirectoryHandle& folder, const std::string& name) {
    constexpr int flags = O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    OpenFile open{files::FileDescriptor(
        files::uninterrupted([&] { return ::openat(folder.descriptor(), name.c_str(), flags, ownFile); }))};
    if (!open.file.isOpen() || ::fstat(open.file.number(), &open.status) != 0) {
        return files::Result<OpenFile>::failed(errno);
    }
    if (!S_ISREG(open.status.st_mode) || open.status.st_nlink > 1 || ::fchmod(open.file.number(), ownFile) != 0) {
        return files::Result<OpenFile>::failed(EPERM);
    }
    return open;
}

// A file system without locks is used as if there were no other process.
bool lock(const files::FileDescriptor& file) {
    return files::uninterrupted([&] { return ::flock(file.number(), LOCK_EX | LOCK_NB); }) == 0 || errno != EWOULDBLOCK;
}

// What has the name, locked if no other process has it so. Until it was, another one may have renamed it.
files::Result<OpenFile> openedAndLocked(const files::DirectoryHandle& folder, const std::string& name) {
    constexpr int attempts = 3;
    auto open = opened(folder, name);
    for (int attempt = 0; open && attempt < attempts && lock(open->file); ++attempt) {
        auto named = opened(folder, name);
        if (named && named->status.st_ino == open->status.st_ino && named->status.st_dev == open->status.st_dev) {
            open->status = named->status;
            open->isLocked = true;
            break;
        }
        open = std::move(named);
    }
    return open;
}

// A part that a full disk has taken is cut off again, so that the next line does not begin in the middle of one.
int append(const OpenFile& open, std::string_view text) {
    const int code = files::writeAll(open.file, text);
    if (code != 0 && open.isLocked) {
        (void)!::ftruncate(open.file.number(), open.status.st_size);
    }
    return code;
}

}  // namespace

int RotatedFile::append(std::string_view text) const {
    const auto folder = madeFolder(folder_);
    if (!folder) {
        return folder.code();
    }
    auto file = openedAndLocked(*folder, name_);
    const auto size = file ? static_cast<std::size_t>(file->status.st_size) : 0;
    if (file && file->isLocked && size > 0 && size + text.size() > maxBytes_) {
        if (::renameat(folder->descriptor(), name_.c_str(), folder->descriptor(), old_.c_str()) != 0) {
            return errno;
        }
        file = openedAndLocked(*folder, name_);
    }
    return file ? platform::append(*file, text) : file.code();
}

}  // namespace brimvault::platform
