#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "files/NodeStatus.h"

namespace brimvault::files {

/// One entry of a directory's listing. The kind is a hint: the entry may have been replaced meanwhile.
struct DirectoryEntry {
    const char* name;  ///< bytes, NUL-terminated, valid during the call only
    NodeKind kind;
    std::uint64_t inode = 0;  ///< on most file systems close to those of entries that are close on the disk
};

/// Reads the entries of open directories in large batches, into a buffer that it reuses: memory does not grow with the
/// size of the folders. A batch of a large directory comes in the order of the inodes, so that who asks the disk for
/// each entry does not make it jump. One thread at a time, one directory at a time.
class DirectoryReader {
public:
    DirectoryReader();

    /// Calls with every entry but "." and "..", from where the directory's listing stands (its beginning when it was
    /// just opened) until the call answers false. 0, or the errno value that ended the reading early.
    [[nodiscard]] int forEachEntry(int directory, const std::function<bool(const DirectoryEntry&)>& call);

private:
    void sortByInode(const std::byte* end);

    std::unique_ptr<std::byte[]> buffer_;
    std::vector<const std::byte*> sorted_;  ///< the entries of a large batch
};

}  // namespace brimvault::files
