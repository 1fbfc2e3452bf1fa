#pragma once

#include <filesystem>
#include <optional>

#include "cleaner-tool/Requester.h"
#include "files/trees/Remove.h"

namespace brimvault::cleaner {

/// The trash folder of a user's home; its folders "files" and "info" may be missing.
[[nodiscard]] std::filesystem::path trashOfHome(const std::filesystem::path& home);

/// Moves a file, a link or a folder into the trash of a user, with a record of where it came from and when, so that the
/// desktop can put it back. Answers where it is now.
///
/// Done only within one file system, and only where the trash's folders are there, are that user's and can be reached
/// by them. None where it was not moved; then it is where it was and there is no record. The path, its folders, mounts
/// and the guard are treated as by files::remove. The guard must let only what the user can reach pass: a closed
/// folder's contents would be opened by moving them into one of the user's.
[[nodiscard]] std::optional<std::filesystem::path> moveToTrash(const std::filesystem::path& path,
                                                               const std::filesystem::path& trash,
                                                               const Requester& requester, files::RemovalGuard& guard);

}  // namespace brimvault::cleaner
