#pragma once

#include <cstdint>

namespace brimvault::cleaner {

// An access list as the kernel takes and gives it in "system.posix_acl_access", version 2: <linux/posix_acl_xattr.h>,
// <linux/posix_acl.h>. A version, and then entries in the order of their tags.

inline constexpr std::uint32_t accessListVersion = 2;
inline constexpr const char* accessListName = "system.posix_acl_access";

enum class AccessTag : std::uint16_t {
    owner = 0x01,
    user = 0x02,
    owningGroup = 0x04,
    group = 0x08,
    mask = 0x10,  ///< at most this for all between the owner and the others
    others = 0x20,
};

struct AccessEntry {
    AccessTag tag;
    std::uint16_t permissions;
    std::uint32_t number;
};

}  // namespace brimvault::cleaner
