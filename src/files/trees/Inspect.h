#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <stop_token>
#include <string>

#include "files/DirectoryHandle.h"
#include "files/OpenFiles.h"
#include "files/trees/ReclaimableSpace.h"

namespace brimvault::files {

/// What measuring an item shows of it besides its size. Symbolic links are not followed.
struct ItemFindings {
    std::uint64_t logical = 0;      ///< bytes, as `measureItem` has them
    ReclaimableSpace space = {};    ///< what removing it frees, its folders included; settled
    bool isSpecial = false;         ///< it is neither a file nor a folder nor a link
    bool holdsMount = false;        ///< another mount begins in it, or it is one
    bool holdsSocket = false;       ///< programs talk to each other in it
    bool holdsWorkingCopy = false;  ///< of a version control system
    bool isForeign = false;         ///< another user owns it, or a folder in it
    bool holdsUnseen = false;       ///< a folder in it, or itself, cannot be read: it may hold anything
    pid_t openBy = 0;               ///< a process that holds something in it open; 0 if none is known
    std::uint64_t identity = 0;     ///< digest of its identity; 0 if it could not be looked at
    std::chrono::system_clock::time_point changed = {};  ///< when it, or anything in it, was modified last

    /// Removing it may take another user's rights.
    [[nodiscard]] bool needsAdministrator() const { return isForeign || holdsUnseen; }
};

/// What the entries of a folder are compared with.
struct InspectionContext {
    std::uint64_t mount;  ///< that the folder is on
    const OpenFiles& open;
    uid_t user = ::geteuid();  ///< who would remove them
};

/// Measures an entry as the listing of an open folder names it, and finds out what else there is to know of it, with
/// the calls that measuring needs anyway and one more for each folder. After a stop the findings are incomplete. Any
/// thread; idle threads of the pool help.
[[nodiscard]] ItemFindings inspectEntry(const DirectoryHandle& folder, const DirectoryEntry& entry,
                                        const InspectionContext& context, const std::stop_token& stop = {});

/// How a regular file begins, at most that many bytes; empty if it is none, or is a link. Never blocks on a pipe.
[[nodiscard]] std::string beginningOf(const DirectoryHandle& folder, const char* name, std::size_t length);

/// Whether a working copy of a version control system begins in the folder itself.
[[nodiscard]] bool isWorkingCopy(const DirectoryHandle& folder);

/// Whether the folder says of itself that it is a cache (CACHEDIR.TAG, bford.info/cachedir).
[[nodiscard]] bool isTaggedAsCache(const DirectoryHandle& folder);

}  // namespace brimvault::files
