#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>

#include "cleaner-tool/ClientConnection.h"
#include "files/FileDescriptor.h"

namespace brimvault::cleaner {

/// Makes the folder where the user's root removers are met: it belongs to the administrator, and the user may enter it,
/// and nobody else. False where it cannot be that.
[[nodiscard]] bool prepareMeetingFolder(const std::filesystem::path& folder, uid_t user);

/// Waits under the name in the folder for the client, turns everybody else away, and then is there for nobody any more.
/// No descriptor where the name is taken, when the application ends, or when it has not come in time.
[[nodiscard]] files::FileDescriptor awaitClient(const std::filesystem::path& folder, const std::string& name,
                                                const Client& client, std::chrono::milliseconds patience);

}  // namespace brimvault::cleaner
