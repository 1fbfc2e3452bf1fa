#pragma once

namespace brimvault::platform {

/// From now on the libraries that read the desktop's settings for this process write nothing for it: neither a folder
/// in the user's caches, nor by way of a session bus. To be called before any thread is started.
void keepLibrariesFromWriting();

}  // namespace brimvault::platform
