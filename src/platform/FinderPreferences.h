#pragma once

#include <filesystem>
#include <mutex>
#include <optional>

namespace brimvault::platform {

/// What the user has set in the file browser, read from its own preference file. Any thread.
class FinderPreferences {
public:
    /// The instance of the process.
    static FinderPreferences& shared();

    /// "Preferences/com.apple.finder.plist" in the user's Library folder. Cached once it was found; none, and looked
    /// for again by the next call, while there is no such file.
    [[nodiscard]] std::optional<std::filesystem::path> GetFinderPrefPath();
    /// Whether the file browser shows hidden files, whose names begin with a full stop ("AppleShowAllFiles"); false by
    /// default.
    [[nodiscard]] bool isHiddenFilesVisibleInFinder();

private:
    std::mutex mutex_;
    std::filesystem::path mpFinderPrefPath_;  ///< empty until it was found
};

}  // namespace brimvault::platform
