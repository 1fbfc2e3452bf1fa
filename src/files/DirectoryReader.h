#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

#include "files/NodeStatus.h"

namespace brimvault::files {

/// One entry of a directory as the listing names it. The kind is a hint: what is done to the entry must hold if it was
/// exchanged meanwhile.
struct DirectoryEntry {
    const char* name;  ///< bytes, zero-terminated, valid during the call only
    NodeKind kind;
    std::uint64_t inode = 0;  ///< near to that of entries which lie near to it on the disk, on most file systems
};

/// Reads the entries of open directories in large batches, into a buffer that it keeps: reading a tree costs the same
/// memory however large its folders are. One thread at a time, one directory at a time.
class DirectoryReader {
public:
    DirectoryReader();

    /// Calls with every entry but "." and "..", from where the directory's listing stands (its beginning when it was
    /// just opened) until the call answers false. 0, or the errno value that ended the reading early.
    [[nodiscard]] int forEachEntry(int directory, const std::function<bool(const DirectoryEntry&)>& call);

private:
    std::unique_ptr<std::byte[]> buffer_;
};

}  // namespace brimvault::files
