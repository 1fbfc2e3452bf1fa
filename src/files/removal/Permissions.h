#pragma once

#include <cstdint>

#include "files/DirectoryHandle.h"

namespace brimvault::files {

/// Sets the twelve permission bits of an open directory, of one that is open to be passed only (O_PATH) as well. 0, or
/// an errno value. Any thread.
[[nodiscard]] int setPermissions(const DirectoryHandle& folder, std::uint32_t permissions);

}  // namespace brimvault::files
