#pragma once

#include <filesystem>
#include <optional>
#include <stop_token>

#include "files/DirectoryHandle.h"
#include "files/NodeStatus.h"
#include "files/Result.h"

namespace brimvault::files {

enum class RemovalEnd {
    gone,       ///< nothing is left under the name
    kept,       ///< something is left; the first failure says why
    cancelled,  ///< stopped part-way; what was not reached is as it was
};

struct [[nodiscard]] RemovalOutcome {
    RemovalEnd end = RemovalEnd::kept;
    std::optional<Failure> failure;  ///< the first one met; set exactly when `end` is `kept`
};

/// Says what a removal must keep. It is asked about open folders and about names in open folders, never about paths, so
/// that no race can show it one folder and empty another. Only an empty folder can still be replaced by another empty
/// one between the last question and its removal, by a process that may change both their parents.
class RemovalGuard {
public:
    virtual ~RemovalGuard() = default;
    /// A folder on the way to the item, from the root on. Answered with false, nothing below it is looked at (EPERM).
    [[nodiscard]] virtual bool onWay(const DirectoryHandle& folder, const NodeStatus& status) = 0;
    /// Asked of the item first, then of each folder, the item among them: once it is open, and of what has its name
    /// once it is empty. Answered with false, that stays with all that is in it (EPERM). Of an item that is missing it
    /// is asked as well, with no identity.
    [[nodiscard]] virtual bool mayRemove(const NodeStatus& node) = 0;
};

/// Whether the path is absolute and names something: without "." or "..", not "/", with no slash at its end and no zero
/// byte.
[[nodiscard]] bool isPlainAbsolute(const std::filesystem::path& path);

/// How many files and folders this process has removed or emptied so far. If it does not grow during a removal, that
/// one hangs. Any thread.
[[nodiscard]] std::uint64_t entriesRemoved();

/// Removes a file, a link or a folder with its contents, for good.
///
/// A path that is not plain and absolute is refused with EINVAL. No link is followed, on the way to the item or inside
/// it; a link is removed itself. Nothing on another mount than the item's folder is touched, nor is a mount point. It
/// goes on after a failure, so that all that can go goes, and answers the first.
/// Where the mode of one of the caller's own folders, the item or one in it, keeps something from going, the owner gets
/// all rights in that folder; one that stays gets its mode back. Not with a guard. A guard is asked before anything is
/// removed that it could want to keep.
///
/// The calling thread removes, helped by idle threads of the pool where the tree is large, each with fewer than 16 open
/// descriptors however deep the tree. With a guard the calling thread works alone, and calls the guard.
///
/// Any thread. A stop is seen before each entry.
RemovalOutcome remove(const std::filesystem::path& path, const std::stop_token& stop = {},
                      RemovalGuard* guard = nullptr);
/// The same of the item of that name in a folder that is held open, wherever the folder is by then; `path`, which ends
/// with the name, is told of in a failure.
RemovalOutcome removeIn(const DirectoryHandle& folder, const std::filesystem::path& path,
                        const std::stop_token& stop = {});
/// Removes a file or a link of that name: 0, or an errno value; EISDIR for a folder. Any thread.
[[nodiscard]] int removeFileIn(const DirectoryHandle& folder, const char* name);

}  // namespace brimvault::files
