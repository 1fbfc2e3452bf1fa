#include "files/removal/Permissions.h"

#include <sys/stat.h>

#include <cerrno>
#include <string>

namespace brimvault::files {

int setPermissions(const DirectoryHandle& folder, std::uint32_t permissions) {
    if (::fchmod(folder.descriptor(), permissions) == 0) {
        return 0;
    }
    if (errno != EBADF) {
        return errno;
    }
    // The system refuses a descriptor made with O_PATH; its name in /proc leads to the very directory that it holds.
    const auto held = "/proc/self/fd/" + std::to_string(folder.descriptor());
    return ::chmod(held.c_str(), permissions) == 0 ? 0 : errno;
}

}  // namespace brimvault::files
