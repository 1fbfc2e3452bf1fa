#pragma once

#include <QString>
#include <cstdint>

namespace brimvault::platform {

/// The names of a user and of a group, for people; the number where the system has no name for it. The database may be
/// on another machine: blocks; any thread but the main one.
[[nodiscard]] QString userNameOf(std::uint32_t user);
[[nodiscard]] QString groupNameOf(std::uint32_t group);

}  // namespace brimvault::platform
