#pragma once

#include <string>

#include "files/DirectoryHandle.h"

namespace brimvault::files {

/// Whether something is mounted on the entry of that name in a folder, or inside it. True as well where the system does
/// not tell. Asks no mounted volume anything; any thread.
[[nodiscard]] bool holdsMountPoint(const DirectoryHandle& folder, const std::string& name);

}  // namespace brimvault::files
