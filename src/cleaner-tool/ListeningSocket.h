#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <string>

#include "cleaner-tool/ClientConnection.h"
#include "files/FileDescriptor.h"

namespace brimvault::cleaner {

/// Makes the folder for the sockets of the user's root removers: it belongs to root, and only the user may enter it.
/// False where it cannot be made so.
[[nodiscard]] bool prepareSocketFolder(const std::filesystem::path& folder, uid_t user);

/// Listens on a Unix socket of that name in the folder, refuses every peer but the client (SO_PEERCRED), accepts that
/// one connection, then closes and unlinks the socket. No descriptor where the name is taken, when the application
/// ends, or after the timeout.
[[nodiscard]] files::FileDescriptor acceptClient(const std::filesystem::path& folder, const std::string& name,
                                                 const Client& client, std::chrono::milliseconds timeout);

}  // namespace brimvault::cleaner
