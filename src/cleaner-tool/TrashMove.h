#pragma once

#include <filesystem>
#include <optional>

#include "cleaner-tool/Requester.h"
#include "files/removal/Remove.h"

namespace brimvault::cleaner {

// The wire protocol has this for `Remover::recycleAsRootPath`; the window removes for good and never asks for it. Since
// it runs as root all the same, it must be as careful as a removal.

/// The trash folder of a user's home; its folders "files" and "info" may be missing.
[[nodiscard]] std::filesystem::path trashOfHome(const std::filesystem::path& home);

/// Moves a file, a link or a folder into the trash of a user, with a record of where it came from and when, so that the
/// desktop can put it back. Returns its new path.
///
/// Done only within one mount, and only where the trash's folders exist, belong to the user and can be searched
/// by them. None if the item was not moved; then it is in its old place, without a record. Path, symbolic links, mounts
/// and the guard are treated as by files::remove. The guard must refuse what the user cannot reach: moving the contents
/// of a closed folder into one of the user's would open them.
[[nodiscard]] std::optional<std::filesystem::path> moveToTrash(const std::filesystem::path& path,
                                                               const std::filesystem::path& trash,
                                                               const Requester& requester, files::RemovalGuard& guard);

}  // namespace brimvault::cleaner
