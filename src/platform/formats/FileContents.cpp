#include "platform/formats/FileContents.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "files/FileDescriptor.h"

namespace brimvault::platform {

namespace {

constexpr int readOnly = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;  // does not block on a FIFO

bool isShortFile(const struct stat& status, std::size_t maxBytes) {
    return S_ISREG(status.st_mode) && static_cast<std::size_t>(status.st_size) <= maxBytes;
}

std::optional<std::string> readWhole(const files::FileDescriptor& file, std::size_t maxBytes) {
    if (!file.isOpen()) {
        return std::nullopt;
    }
    struct stat status {};
    bool good = ::fstat(file.number(), &status) == 0 && isShortFile(status, maxBytes);
    std::string contents(good ? static_cast<std::size_t>(status.st_size) + 1 : 0, '\0');
    std::size_t length = 0;
    for (ssize_t got = 1; good && got > 0 && length < contents.size();) {
        got = ::read(file.number(), contents.data() + length, contents.size() - length);
        good = got >= 0;
        length += good ? static_cast<std::size_t>(got) : 0;
    }
    good = good && length < contents.size();  // else it has grown meanwhile
    contents.resize(length);
    return good ? std::optional(std::move(contents)) : std::nullopt;
}

}  // namespace

std::optional<std::string> FileContents::read(const files::DirectoryHandle& folder, const char* name,
                                              std::size_t maxBytes) {
    return readWhole(files::FileDescriptor(::openat(folder.descriptor(), name, readOnly | O_NOFOLLOW)), maxBytes);
}

std::optional<std::string> FileContents::read(const std::filesystem::path& file, std::size_t maxBytes) {
    return readWhole(files::FileDescriptor(::open(file.c_str(), readOnly)), maxBytes);
}

bool FileContents::isHarmless(const std::filesystem::path& file, std::size_t maxBytes) {
    struct stat status {};
    return ::stat(file.c_str(), &status) != 0 || isShortFile(status, maxBytes);
}

}  // namespace brimvault::platform
