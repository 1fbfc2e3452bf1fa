#pragma once

#include <atomic>
#include <cstdint>

namespace brimvault::files {

/// What `entriesRemoved` tells; counted up by whatever removes or empties an entry.
inline std::atomic<std::uint64_t> removedCount = 0;

}  // namespace brimvault::files
