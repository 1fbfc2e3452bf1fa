#include "cleaner-tool/Requester.h"

#include <sys/socket.h>
#include <sys/xattr.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string>

#include "cleaner-tool/linux/AccessList.h"

namespace brimvault::cleaner {

namespace {

constexpr std::uint32_t search = 01;
constexpr unsigned groupShift = 3;
constexpr unsigned ownerShift = 6;

using AccessList = std::vector<AccessEntry>;

// Empty where the folder has no list of its own; none where it cannot be read.
std::optional<AccessList> accessListOf(int folder) {
    constexpr std::size_t maxSize = 65536;  // the kernel's maximum of an extended attribute
    std::vector<char> bytes(maxSize);
    const auto path = "/proc/self/fd/" + std::to_string(folder);  // fgetxattr refuses an O_PATH descriptor
    const ssize_t size = ::getxattr(path.c_str(), accessListName, bytes.data(), bytes.size());
    if (size < 0) {
        return errno == ENODATA || errno == EOPNOTSUPP ? std::optional(AccessList()) : std::nullopt;
    }
    std::uint32_t version = 0;
    const auto content = static_cast<std::size_t>(size) - std::min(sizeof version, static_cast<std::size_t>(size));
    std::memcpy(&version, bytes.data(), sizeof version);
    if (version != accessListVersion || content == 0 || content % sizeof(AccessEntry) != 0) {
        return std::nullopt;
    }
    AccessList list(content / sizeof(AccessEntry));
    std::memcpy(list.data(), bytes.data() + sizeof version, content);
    return list;
}

}  // namespace

std::optional<Requester> Requester::ofPeer(int connection) {
    ucred peer{};
    socklen_t size = sizeof peer;
    if (::getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0) {
        return std::nullopt;
    }
    socklen_t bytes = 0;
    (void)::getsockopt(connection, SOL_SOCKET, SO_PEERGROUPS, nullptr, &bytes);
    std::vector<gid_t> groups(bytes / sizeof(gid_t));
    if (::getsockopt(connection, SOL_SOCKET, SO_PEERGROUPS, groups.data(), &bytes) != 0) {
        return std::nullopt;
    }
    groups.push_back(peer.gid);
    return Requester{peer.uid, std::move(groups)};
}

bool Requester::isIn(gid_t group) const { return std::find(groups.begin(), groups.end(), group) != groups.end(); }

// The first match decides: the owner, a user that the list names, all groups together, the others.
bool Requester::maySearch(const files::DirectoryHandle& folder, const files::NodeStatus& status) const {
    if (status.owner == user) {
        return (status.permissions >> ownerShift & search) != 0;
    }
    const bool isOfGroup = isIn(status.group);
    const std::uint32_t mask =
        status.permissions >> groupShift & 07U;  // the group bits of the mode, which are the mask of a list
    const auto list = mask == 0 ? AccessList() : accessListOf(folder.descriptor());
    if (!list) {
        return false;
    }
    bool isMatched = false;
    for (const auto& entry : *list) {
        const bool isUser = entry.tag == AccessTag::user && entry.number == user;
        const bool isGroup =
            (entry.tag == AccessTag::owningGroup && isOfGroup) || (entry.tag == AccessTag::group && isIn(entry.number));
        isMatched = isMatched || isUser || isGroup;
        if ((isUser || isGroup) && (entry.permissions & mask & search) != 0) {
            return true;
        }
        if (isUser) {
            return false;
        }
    }
    if (!list->empty()) {
        return !isMatched && (status.permissions & search) != 0;
    }
    return ((isOfGroup ? mask : status.permissions) & search) != 0;
}

}  // namespace brimvault::cleaner
