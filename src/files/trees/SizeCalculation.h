#pragma once

#include <cstdint>
#include <filesystem>

#include "files/Result.h"

namespace brimvault::files {

/// Two folder sizes, kept for callers outside of the window: the scans measure with files/trees/Measure. What cannot be
/// read counts as nothing.
class SizeCalculation {
public:
    /// One for the process, made on first use.
    static SizeCalculation& sharedInstance();

    /// Adds the lengths of the regular files in the folder to a total that the process keeps and never resets, and
    /// answers that total: the answer of a second call holds both. 0 for what cannot be opened as a folder, which
    /// leaves the total as it is. Not to be used by two threads at once. Ends the process with status 1 when memory
    /// runs out.
    std::uint64_t getFolderSize(const std::filesystem::path& path);

    /// Bytes on disk of everything in the folder that is no folder itself; links count as small files. Any thread.
    [[nodiscard]] std::uint64_t fastFolderSizeOfItemWithPath(const std::filesystem::path& path) const;
    /// The same; the failure is never set.
    [[nodiscard]] std::uint64_t sizeForFolderAtPath(const std::filesystem::path& path, Failure* error) const;

private:
    std::uint64_t runningTotal_ = 0;
};

}  // namespace brimvault::files
