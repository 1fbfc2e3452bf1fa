#include "files/NodeStatus.h"

#include <fcntl.h>

#include <cerrno>

namespace brimvault::files {

Result<NodeStatus> statusOf(const std::filesystem::path& path) {
    if (path.empty()) {
        return Result<NodeStatus>::failed(ENOENT);
    }
    return statusAt(AT_FDCWD, path.c_str());
}

bool mayExist(const std::filesystem::path& path) {
    const int code = statusOf(path).code();
    return code != ENOENT && code != ENOTDIR;
}

}  // namespace brimvault::files
