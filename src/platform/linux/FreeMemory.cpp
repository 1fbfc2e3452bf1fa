#include "platform/FreeMemory.h"

#include <malloc.h>

namespace brimvault::platform {

// The C library keeps what a thread has freed for that thread, and the next scan runs on another.
void giveBackFreeMemory() { ::malloc_trim(0); }

}  // namespace brimvault::platform
