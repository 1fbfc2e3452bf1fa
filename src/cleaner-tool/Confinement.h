#pragma once

namespace brimvault::cleaner {

/// Gives up what the process was started with: environment, open files, working folder, mode mask, memory dumps,
/// terminal and timers. First of all, while there is one thread. False when something could not be given up.
[[nodiscard]] bool giveUpSurroundings();

/// Gives up, for good, every privilege but those that removing takes: to enter and change any folder, and to remove
/// from folders in which only owners may. False when one could not be given up.
[[nodiscard]] bool giveUpPrivileges();

}  // namespace brimvault::cleaner
