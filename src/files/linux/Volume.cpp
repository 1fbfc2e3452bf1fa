#include "files/Volume.h"

#include <sys/statvfs.h>
#include <unistd.h>

#include "files/SystemCall.h"

namespace brimvault::files {

Result<Volume> Volume::of(const std::filesystem::path& folder) {
    auto opened = DirectoryHandle::open(folder);
    return opened ? Result<Volume>(Volume(std::move(*opened))) : Result<Volume>::failed(opened.code());
}

std::optional<std::uint64_t> Volume::device() const {
    const auto status = folder_.status();
    return status ? std::optional(status->identity.device) : std::nullopt;
}

std::optional<std::uint64_t> Volume::freeBytes() const {
    struct statvfs raw {};
    if (uninterrupted([&] { return ::fstatvfs(folder_.descriptor(), &raw); }) != 0) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(raw.f_bfree) * raw.f_frsize;
}

// syncfs() refuses a descriptor that was opened for the path alone.
void Volume::flush() const {
    if (const auto readable = folder_.reopenForReading()) {
        (void)::syncfs(readable->descriptor());
    }
}

}  // namespace brimvault::files
