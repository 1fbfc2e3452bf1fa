#include "cleaner-tool/protocol/SocketPath.h"

#include <algorithm>
#include <string>

namespace brimvault::cleaner {

bool isSocketName(std::string_view name) {
    return name.starts_with(socketNamePrefix) && name.size() == socketNamePrefix.size() + socketNameDigits &&
           std::all_of(name.begin() + socketNamePrefix.size(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::filesystem::path socketFolder(uid_t user) {
    return std::filesystem::path("/run/brimvault") / std::to_string(user);
}

}  // namespace brimvault::cleaner
