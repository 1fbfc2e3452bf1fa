#pragma once

#include <filesystem>

namespace brimvault::platform {

/// The maker's library of notices. It may be installed beside the program, under the name that the system gives to a
/// library "QuorvelFallManager" (on Linux libQuorvelFallManager.so), and exports one C function without arguments,
/// `QuorvelFallManager_start`. Nothing else is asked of it, and nothing is missed where there is none.
class QuorvelFallManager {
public:
    /// Loads the library from the folder, from nowhere else, and starts it; it stays for the life of the process. NO
    /// where there is none, or none that can be started. Main thread, where the library is at home.
    static bool start(const std::filesystem::path& folder);
};

}  // namespace brimvault::platform
