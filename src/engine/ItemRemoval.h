#pragma once

#include <QString>
#include <filesystem>

#include "engine/PrivilegedRemover.h"

namespace brimvault::engine {

struct [[nodiscard]] ItemRemoval {
    bool gone = false;  ///< nothing is left under the path
    QString reason;     ///< why something is left, for people: in the system's words where it gives any

    /// The reason where the system gives none.
    static QString withoutSystemText();
};

/// Removes one item for good: the way that every removal of a file goes, of a whole clean as of a single item. A folder
/// that no list of items can rightly hold is refused. Once an item of the desktop's trash is gone, the record of where
/// it came from goes as well.
///
/// Where the user may not remove it, the remover is asked, once, unless the folder that holds the item is locked
/// against change. Blocks; any thread but the main one.
ItemRemoval removeItemAt(const std::filesystem::path& path, PrivilegedRemover& remover = PrivilegedRemover::none());

}  // namespace brimvault::engine
