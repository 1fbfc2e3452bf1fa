#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace brimvault::platform {

/// What the process learns from its operating system, behind `system()` so that a test can substitute it.
struct System {
    /// The home folder of the user who runs the process, by the user database; none without a record. HOME is ignored.
    std::function<std::optional<std::filesystem::path>()> recordedHomeFolder;
    /// The login name of that user.
    std::function<std::string()> userName;
    /// The value of an environment variable; empty when it is not set.
    std::function<std::string(const char*)> environmentVariable;
};

/// Any thread.
const System& system();

/// Replaces the real system during its lifetime. For tests; while no other thread reads it.
class SubstituteSystem {
public:
    explicit SubstituteSystem(System system);
    SubstituteSystem(const SubstituteSystem&) = delete;
    SubstituteSystem& operator=(const SubstituteSystem&) = delete;
    ~SubstituteSystem();

private:
    System system_;
    const System* before_;
};

/// The real one; implemented in the folder of each operating system.
[[nodiscard]] System realSystem();

/// The home folder by the user database, or "/Users/" and the login name where it has no record. Its symbolic links are
/// resolved, so that a path below it need not lead through one. Any thread.
[[nodiscard]] std::filesystem::path homeFolder();

/// The root of the system-wide folders: "/". A trial or a test, which must not touch the machine's own, sets
/// BRIMVAULT_TRIAL_ROOT to a folder that replaces it. Any thread.
[[nodiscard]] std::filesystem::path systemRoot();

}  // namespace brimvault::platform
