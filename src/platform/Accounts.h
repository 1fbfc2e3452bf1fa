#pragma once

#include <QString>
#include <cstdint>

namespace brimvault::platform {

/// The names of a user and of a group, to be shown; the number where the user database has no name. The database may be
/// on the network: blocks; any thread but the main one.
[[nodiscard]] QString userNameOf(std::uint32_t user);
[[nodiscard]] QString groupNameOf(std::uint32_t group);

}  // namespace brimvault::platform
