#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <set>
#include <string>

namespace brimvault::platform {

/// The applications from Flatpak and Snap that run now, by the records of these systems. Any thread.
class RunningPrograms {
public:
    /// By the identifier, "org.example.Editor".
    [[nodiscard]] bool isFlatpakRunning(const std::string& identifier);
    [[nodiscard]] bool isSnapRunning(const std::string& name);

private:
    std::optional<std::set<std::string>> flatpaks_;  ///< looked up when first asked
    std::optional<std::set<std::string>> snaps_;
};

/// The owner of the lock of a profile: a symbolic link whose target names the machine and the process.
struct ProfileUse {
    bool isUsed = false;           ///< also where another machine uses it, as far as can be known
    bool isElsewhere = false;      ///< the lock is of another machine
    std::optional<pid_t> program;  ///< on this machine
};
/// The folder of a browser's profiles, or of a program built on one.
[[nodiscard]] ProfileUse useOfProfile(const std::filesystem::path& folder);
/// The same for the other family of browsers, which keeps its link in each profile's folder.
[[nodiscard]] ProfileUse useOfMozillaProfile(const std::filesystem::path& folder);

}  // namespace brimvault::platform
