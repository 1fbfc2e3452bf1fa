#pragma once

namespace brimvault::cleaner {

/// Resets what the process inherits: environment, open descriptors, working folder, umask, core dumps, terminal and
/// timers. Call it first of all, while there is one thread. False when something could not be reset.
[[nodiscard]] bool resetInheritedState();

/// Drops, for good, every capability but those that a removal needs: to enter and change any folder (CAP_DAC_OVERRIDE),
/// and to remove from sticky folders (CAP_FOWNER). False when one could not be dropped.
[[nodiscard]] bool dropPrivileges();

}  // namespace brimvault::cleaner
