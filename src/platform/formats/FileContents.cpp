#include "platform/formats/FileContents.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace brimvault::platform {

namespace {

constexpr int readOnly = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;  // a pipe is not waited for

bool isShortFile(const struct stat& status, std::size_t mostBytes) {
    return S_ISREG(status.st_mode) && static_cast<std::size_t>(status.st_size) <= mostBytes;
}

// Closes the descriptor, which may be one that could not be opened.
std::optional<std::string> take(int descriptor, std::size_t mostBytes) {
    if (descriptor < 0) {
        return std::nullopt;
    }
    struct stat status {};
    bool good = ::fstat(descriptor, &status) == 0 && isShortFile(status, mostBytes);
    std::string contents(good ? static_cast<std::size_t>(status.st_size) + 1 : 0, '\0');
    std::size_t length = 0;
    for (ssize_t got = 1; good && got > 0 && length < contents.size();) {
        got = ::read(descriptor, contents.data() + length, contents.size() - length);
        good = got >= 0;
        length += good ? static_cast<std::size_t>(got) : 0;
    }
    ::close(descriptor);
    good = good && length < contents.size();  // else it grows under the hand
    contents.resize(length);
    return good ? std::optional(std::move(contents)) : std::nullopt;
}

}  // namespace

std::optional<std::string> FileContents::read(const files::DirectoryHandle& folder, const char* name,
                                              std::size_t mostBytes) {
    return take(::openat(folder.descriptor(), name, readOnly | O_NOFOLLOW), mostBytes);
}

std::optional<std::string> FileContents::read(const std::filesystem::path& file, std::size_t mostBytes) {
    return take(::open(file.c_str(), readOnly), mostBytes);
}

bool FileContents::isHarmless(const std::filesystem::path& file, std::size_t mostBytes) {
    struct stat status {};
    return ::stat(file.c_str(), &status) != 0 || isShortFile(status, mostBytes);
}

}  // namespace brimvault::platform
