#pragma once

namespace brimvault::platform {

/// Gives memory back to the system that was freed after very much was held. Takes milliseconds. Any thread.
void giveBackFreeMemory();

}  // namespace brimvault::platform
