#pragma once

#include <filesystem>

#include "files/DirectoryHandle.h"
#include "files/removal/TrashEntries.h"

namespace brimvault::engine {

/// The trash folder into which an item can be moved by renaming it: the desktop's in the home folder if that is on the
/// same volume, else the one at the top of the item's volume.
struct TrashOfVolume {
    std::filesystem::path folder;  ///< without symbolic links
    std::filesystem::path top;     ///< of the volume, which records of its trash leave out; empty for the desktop's
    files::OpenTrash opened;

    /// Of the item's volume, made where it is missing, as the desktop would make it. `holder` is the folder that holds
    /// the item, at the path. Only a trash folder of the user's own counts, and in one that all users share only where
    /// these cannot touch each other's. The error says what keeps it from being opened or made. Blocks; any thread but
    /// the main one.
    [[nodiscard]] static files::Result<TrashOfVolume> open(const files::DirectoryHandle& holder,
                                                           const std::filesystem::path& holderPath);
    /// One that was open before.
    [[nodiscard]] static files::Result<TrashOfVolume> openAgain(const std::filesystem::path& folder);
};

}  // namespace brimvault::engine
