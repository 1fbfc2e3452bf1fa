#pragma once

#include <string>
#include <string_view>

#include "files/DirectoryHandle.h"

namespace brimvault::files {

/// Replaces the contents of the regular file of that name at once: a new file with its permissions is renamed over it.
/// 0, or an errno value, with which the old file is there as it was: ENOENT where there is none, EINVAL if it is no
/// regular file. Any thread.
[[nodiscard]] int replaceFile(const DirectoryHandle& folder, const std::string& name, std::string_view text);

}  // namespace brimvault::files
