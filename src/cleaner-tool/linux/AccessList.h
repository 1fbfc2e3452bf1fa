#pragma once

#include <cstdint>

namespace brimvault::cleaner {

// An access control list in the kernel's format of the extended attribute "system.posix_acl_access", version 2
// (<linux/posix_acl_xattr.h>, <linux/posix_acl.h>): the version, then entries in the order of their tags. It has been
// the same since Linux 2.6, so that a process that runs as root needs no library for it.

inline constexpr std::uint32_t accessListVersion = 2;
inline constexpr const char* accessListName = "system.posix_acl_access";

enum class AccessTag : std::uint16_t {
    owner = 0x01,
    user = 0x02,
    owningGroup = 0x04,
    group = 0x08,
    mask = 0x10,  ///< the maximum for all between the owner and the others
    others = 0x20,
};

struct AccessEntry {
    AccessTag tag;
    std::uint16_t permissions;
    std::uint32_t number;
};

}  // namespace brimvault::cleaner
