#pragma once

#include <filesystem>

namespace brimvault::platform {

/// The maker's library of notices, an optional plug-in. It may be installed beside the program, under the system's file
/// name for a library "QuorvelFallManager" (on Linux libQuorvelFallManager.so), and exports one C function without
/// arguments, `QuorvelFallManager_start`.
class QuorvelFallManager {
public:
    /// Loads the library from the folder, from nowhere else, and starts it; it stays loaded for the life of the
    /// process. False where there is none, or none that exports the function. Main thread.
    static bool start(const std::filesystem::path& folder);
};

}  // namespace brimvault::platform
