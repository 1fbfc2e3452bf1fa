#pragma once

#include <filesystem>

namespace brimvault::platform {

/// From now on the libraries that read the desktop's settings for this process write nothing for it: neither a folder
/// in the user's caches, nor by way of a session bus. To be called before any thread is started.
void keepLibrariesFromWriting();

/// The user's runtime folder (XDG_RUNTIME_DIR), from which the libraries may be kept; empty if the user has none. Any
/// thread.
[[nodiscard]] std::filesystem::path runtimeFolder();

}  // namespace brimvault::platform
