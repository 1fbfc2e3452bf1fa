#pragma once

#include <sys/types.h>

#include <optional>
#include <vector>

#include "files/DirectoryHandle.h"

namespace brimvault::cleaner {

/// Who asks for a removal: the user, and the groups of the process that speaks for them.
struct Requester {
    uid_t user = 0;
    std::vector<gid_t> groups;

    /// None where the system does not tell who is at the other side of a connection.
    static std::optional<Requester> ofPeer(int connection);

    /// Whether they may pass through the folder by its mode and its access list (POSIX 1003.1e, as the system itself
    /// decides). What lies on a way that is closed to them is not theirs, whoever's number it bears: the number may
    /// stand for another user there, as in a container. No where it cannot be told.
    [[nodiscard]] bool maySearch(const files::DirectoryHandle& folder, const files::NodeStatus& status) const;

private:
    [[nodiscard]] bool isIn(gid_t group) const;
};

}  // namespace brimvault::cleaner
