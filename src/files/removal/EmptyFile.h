#pragma once

#include <cstdint>

#include "files/DirectoryHandle.h"
#include "files/Result.h"

namespace brimvault::files {

/// What a file took on the disk, in bytes.
struct EmptiedFile {
    std::uint64_t before = 0;
    std::uint64_t after = 0;  ///< what was written since, or 0 where the system does not tell
};

/// Takes from a file of that name all that it holds, for one that a process writes to: its space would stay taken if
/// only its name went. It stays the same file, with length 0. A process that appends to it writes on from its
/// beginning; another writes on where it was, and what lies before that takes no space.
///
/// Only the caller's own regular file of that identity (`FileIdentity::digest`), with no other name, is touched; no
/// link is followed, and nothing blocks on what has come into its place. Otherwise it answers an errno value:
///   ESTALE  it is not that file
///   EMLINK  it has other names, whose owners may want what it holds
///   EPERM   it belongs to another user, or is immutable or append-only
///   EXDEV   it lies on another mount than the folder
/// or what the system says of opening or shortening it. Any thread.
Result<EmptiedFile> emptyFileIn(const DirectoryHandle& folder, const char* name, std::uint64_t identity);

}  // namespace brimvault::files
