#include "platform/RotatedFile.h"

#include <fcntl.h>
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
int append(const OpenFile& open, std::string_view text) {
    const int code = files::writeAll(open.file, text);
    if (code != 0) {
        (void)!::ftruncate(open.file.number(), open.size);
    }
    return code;
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
    return file ? platform::append(*file, text) : file.code();
}

}  // namespace brimvault::platform
