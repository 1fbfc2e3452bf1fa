#pragma once

#include <sys/types.h>

#include <optional>
#include <vector>

#include "files/DirectoryHandle.h"

namespace brimvault::cleaner {

/// The peer that asks for a removal: the user, and the groups of the application's process.
struct Requester {
    uid_t user = 0;
    std::vector<gid_t> groups;

    /// None where the kernel does not tell the peer of the connection (SO_PEERCRED, SO_PEERGROUPS).
    static std::optional<Requester> ofPeer(int connection);

    /// Whether they may search the folder by its mode and its access control list (POSIX 1003.1e, as the kernel
    /// decides). What they cannot reach is not theirs, even if it has their user ID: below such a folder, as in a
    /// container, the ID may belong to another user. False where it cannot be determined.
    [[nodiscard]] bool maySearch(const files::DirectoryHandle& folder, const files::NodeStatus& status) const;

private:
    [[nodiscard]] bool isIn(gid_t group) const;
};

}  // namespace brimvault::cleaner
