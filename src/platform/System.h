#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace brimvault::platform {

/// What the process is told by the system that it runs on. Read through `system()`, so that a test can put its own in.
struct System {
    /// The home folder in the user database's record of the user who runs the process; none without a record. The
    /// environment has no say in it.
    std::function<std::optional<std::filesystem::path>()> recordedHomeFolder;
    /// The login name of that user.
    std::function<std::string()> userName;
    /// The value of an environment variable; empty when it is not set.
    std::function<std::string(const char*)> environmentVariable;
};

/// Any thread.
const System& system();

/// Puts another system in the place of the real one for as long as it lives. For tests; while no other thread reads it.
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

/// The system that the process really runs on; each system's folder holds its own.
[[nodiscard]] System realSystem();

/// The home folder with the links on the way to it resolved, so that no path below it needs to lead through one:
/// the user database's, or "/Users/" and the login name where it has no record. Any thread.
[[nodiscard]] std::filesystem::path homeFolder();

/// Where the folders begin that belong to the whole system: "/". A trial or a test, which must touch nothing of the
/// machine's own, names a folder in BRIMVAULT_TRIAL_ROOT that stands for it. Any thread.
[[nodiscard]] std::filesystem::path systemRoot();

}  // namespace brimvault::platform
