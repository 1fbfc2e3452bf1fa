#pragma once

#include <filesystem>

namespace brimvault::scanners {

/// The home folder of the user who runs the process, as the user database has it, and folders that always lie below it.
/// A section's own folder is looked up by platform::LibraryURLs, which knows where the system keeps it. Made on first
/// use, immutable afterwards; any thread.
class PathsGenerator {
public:
    PathsGenerator() : m_sHomeDirectory_(findHomeDirectory()) {}
    static const PathsGenerator& GetInstance();

    [[nodiscard]] const std::filesystem::path& getHomeDirectory() const { return m_sHomeDirectory_; }
    /// "/Users/" and the login name where the user database has no record.
    [[nodiscard]] static std::filesystem::path findHomeDirectory();

    // --- Kept for callers outside of the window: nothing in src calls these ---

    [[nodiscard]] std::filesystem::path buildTrashDirectory() const { return m_sHomeDirectory_ / ".Trash"; }
    [[nodiscard]] std::filesystem::path buildUserApplicationsDirectory() const {
        return m_sHomeDirectory_ / "Applications";
    }
    [[nodiscard]] std::filesystem::path buildCacheDirectory() const { return m_sHomeDirectory_ / "Library" / "Caches"; }
    [[nodiscard]] std::filesystem::path buildDownloadsDirectory() const { return m_sHomeDirectory_ / "Downloads"; }

private:
    const std::filesystem::path m_sHomeDirectory_;
};

}  // namespace brimvault::scanners
