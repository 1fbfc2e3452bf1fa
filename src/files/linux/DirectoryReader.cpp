#include "files/DirectoryReader.h"

#include <dirent.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "files/SystemCall.h"

namespace brimvault::files {

namespace {

// Over a thousand entries at a time; below the size at which an allocator maps new memory for each reader.
constexpr std::size_t batchSize = std::size_t{64} * 1024;

// As the kernel writes it, with the name behind it.
struct RawEntry {
    std::uint64_t inode;
    std::int64_t offset;
    std::uint16_t length;
    std::uint8_t type;
};
constexpr std::size_t maxEntry = 280;  // with the longest name
constexpr std::size_t fullBatch = batchSize - maxEntry;
constexpr std::size_t nameOffset = 19;  // there is padding behind the last member, but not in what the kernel writes

const RawEntry* rawAt(const std::byte* place) { return reinterpret_cast<const RawEntry*>(place); }

NodeKind kindOf(int directory, std::uint8_t type, const char* name) {
    switch (type) {
        case DT_REG:
            return NodeKind::regular;
        case DT_DIR:
            return NodeKind::directory;
        case DT_LNK:
            return NodeKind::link;
        case DT_UNKNOWN: {  // some file systems keep no kinds in their listings
            const auto status = statusAt(directory, name);
            return status ? status->kind : NodeKind::directory;  // opening it as one will show
        }
        default:
            return NodeKind::other;
    }
}

// Asked for every entry, so without looking for the end of the name.
bool isSelfOrParent(const char* name) {
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

}  // namespace

DirectoryReader::DirectoryReader() : buffer_(std::make_unique_for_overwrite<std::byte[]>(batchSize)) {}

int DirectoryReader::forEachEntry(int directory, const std::function<bool(const DirectoryEntry&)>& call) {
    const auto report = [&](const std::byte* place) {
        const char* name = reinterpret_cast<const char*>(place) + nameOffset;
        return isSelfOrParent(name) || call({name, kindOf(directory, rawAt(place)->type, name), rawAt(place)->inode});
    };
    for (;;) {
        const long size = uninterrupted([&] { return ::syscall(SYS_getdents64, directory, buffer_.get(), batchSize); });
        if (size <= 0) {
            return size == 0 ? 0 : errno;
        }
        const std::byte* const end = buffer_.get() + size;
        if (static_cast<std::size_t>(size) <= fullBatch) {
            for (const std::byte* place = buffer_.get(); place < end; place += rawAt(place)->length) {
                if (!report(place)) {
                    return 0;
                }
            }
            continue;
        }
        sortByInode(end);
        if (!std::all_of(sorted_.begin(), sorted_.end(), report)) {
            return 0;
        }
    }
}

void DirectoryReader::sortByInode(const std::byte* end) {
    sorted_.clear();
    for (const std::byte* place = buffer_.get(); place < end; place += rawAt(place)->length) {
        sorted_.push_back(place);
    }
    std::sort(sorted_.begin(), sorted_.end(),
              [](const std::byte* left, const std::byte* right) { return rawAt(left)->inode < rawAt(right)->inode; });
}

}  // namespace brimvault::files
