#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace brimvault::trial {

/// What programs of a Linux desktop leave in a home folder: caches in all the places that the rules know, look-alikes,
/// and what must never go. Files are allocated, not written. Every problem is a std::exception.
class LinuxDesktop {
public:
    explicit LinuxDesktop(const std::filesystem::path& home) : home_(home) {}

    /// Something under each name in ~/.cache that some rule knows, and under some that none does.
    void makeCaches() const;
    /// Applications from Flatpak and Snap, and profiles of browsers and of programs built on one, true and false.
    void makeApplications() const;
    /// Developers' and players' caches outside of ~/.cache, and what lies beside them.
    void makeTools() const;
    /// Logs of the desktop and of programs, and much that only looks like one.
    void makeLogs() const;
    /// Desktop entries of the applications, so that rows have their names.
    void makeDesktopEntries() const;
    /// What the program must leave as it is, wherever it stands.
    void makePrecious() const;
    void makeAll() const;

    /// The record of a running application from Flatpak, in the runtime folder.
    static void runFlatpak(const std::filesystem::path& runtime, const std::string& identifier, pid_t process);
    /// The link that a program leaves in its profile's folder while it runs.
    void runProfile(const std::filesystem::path& profile, const std::string& machine, pid_t process) const;

    /// The folders in which a clean removes something, from the home on.
    [[nodiscard]] static std::vector<std::filesystem::path> changingFolders();
    /// Some of what must be there after every clean, from the home on.
    [[nodiscard]] static std::vector<std::filesystem::path> precious();

    static constexpr const char* profile = ".config/Code";  ///< a true one

private:
    std::filesystem::path home_;
};

}  // namespace brimvault::trial
