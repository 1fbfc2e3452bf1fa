#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <stop_token>
#include <string>
#include <unordered_map>
#include <vector>

#include "files/NodeStatus.h"

namespace brimvault::files {

/// Which of them a snapshot tells of.
enum class OpenFor { anything, writing };

/// A snapshot of the files and folders that other processes hold open, run, or work in, or of the files alone that they
/// may write to. It warns and guarantees nothing: a process may open a file a moment later, one of another user cannot
/// be looked at, and a file that is only mapped is missing. Immutable; any thread.
class OpenFiles {
public:
    OpenFiles() = default;
    /// Goes through the processes that the user may look at, without this one. Where the system shows none, or a stop
    /// is requested, nothing more is known.
    [[nodiscard]] static OpenFiles now(const std::stop_token& stop = {}, OpenFor use = OpenFor::anything);

    /// One of the processes that hold it open.
    [[nodiscard]] std::optional<pid_t> holderOf(const FileIdentity& file) const {
        const auto found = holders_.find({file.device, file.inode});
        return found == holders_.end() ? std::nullopt : std::optional(found->second);
    }
    [[nodiscard]] std::size_t count() const { return holders_.size(); }

private:
    // Without the time of birth: while a file is open its inode number is not reused.
    struct Key {
        std::uint64_t device;
        std::uint64_t inode;
        bool operator==(const Key&) const = default;
    };
    struct Hash {
        std::size_t operator()(const Key& key) const {
            constexpr std::uint64_t spread = 0x9E3779B97F4A7C15;  // 2^64 divided by the golden ratio
            return static_cast<std::size_t>((key.inode ^ (key.device << 32U) ^ (key.device >> 32U)) * spread);
        }
    };

    std::unordered_map<Key, pid_t, Hash> holders_;
};

/// A file without a name that a running program holds open.
struct RemovedFile {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t allocated = 0;  ///< bytes on disk
    std::string program = {};     ///< as `programName` tells it
};

/// The files that have been removed from these devices (`st_dev`) and that other processes hold open, once for each
/// program. Goes through the processes that the user may look at; ends early on a stop. Any thread.
[[nodiscard]] std::vector<RemovedFile> removedFilesInUse(const std::set<std::uint64_t>& devices,
                                                         const std::stop_token& stop = {});

/// The name of a running program, as the system shows it (at most 15 bytes on Linux); empty when it has ended.
[[nodiscard]] std::string programName(pid_t process);

/// Whether the process runs. One that has ended and is only waited for does not.
[[nodiscard]] bool isRunning(pid_t process);

}  // namespace brimvault::files
