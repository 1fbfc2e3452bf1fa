#pragma once

#include <QString>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "engine/model/FFItem.h"
#include "engine/model/FoundIn.h"
#include "files/NodeStatus.h"

namespace brimvault::engine {

/// A file, folder or link that was moved to the Trash.
struct TrashedFile {
    std::filesystem::path original;          ///< where it was
    std::shared_ptr<const FoundIn> foundIn;  ///< the folder that held it
    std::filesystem::path trash;             ///< the trash folder
    std::string name;                        ///< in that folder
    files::FileIdentity identity;
    std::uint64_t bytes = 0;  ///< its share of the item's size
};

struct [[nodiscard]] TrashMove {
    /// All that the item stands for; empty if it was not moved, unless that failed half-way and something could not be
    /// put back either.
    std::vector<TrashedFile> files;
    QString reason;  ///< why it was not, for the user
};

struct [[nodiscard]] TrashReturn {
    std::vector<TrashedFile> back;
    std::vector<TrashedFile> left;  ///< may be tried again; what is not in the Trash any more is in neither
    QString reason;                 ///< why the first of the others is not back, for the user; empty if all are
};

// Moving an item to the Trash and back, by renaming within its volume: nothing is copied, and nothing that has come to
// a name meanwhile is replaced. Blocks; any thread but the main one.

/// Moves what a scan has found at the path, or all that the item stands for, or nothing of it. It is left where it is
/// if it is not what the scan found, if its folder was exchanged, if it is protected, or in a trial if it lies outside
/// (as `ItemRemover` has it). Nobody is asked for rights.
TrashMove moveToTrash(const FFItem& item, const std::filesystem::path& path);

/// Puts everything back to where it was, as far as that can be done.
TrashReturn putBack(const std::vector<TrashedFile>& files);

}  // namespace brimvault::engine
