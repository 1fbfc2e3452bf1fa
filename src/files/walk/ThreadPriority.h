#pragma once

namespace brimvault::files {

/// Lowers the calling thread's priority (nice 5), so that the GUI thread wins when CPUs are scarce.
void lowerThreadPriority();

}  // namespace brimvault::files
