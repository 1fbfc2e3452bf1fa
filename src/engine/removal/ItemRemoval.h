#pragma once

#include <QString>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>

#include "engine/model/FoundIn.h"
#include "engine/removal/PrivilegedRemover.h"
#include "engine/removal/ProtectedFolders.h"
#include "files/DirectoryHandle.h"

namespace brimvault::engine {

struct [[nodiscard]] ItemRemoval {
    bool gone = false;  ///< nothing is left under the path
    QString reason;     ///< why something is left, for people: in the system's words where it gives any

    /// The reason where the system gives none.
    static QString withoutSystemText();
    /// The reason where the folder is not the one in which the item was found.
    static QString exchangedText();
};

/// Removes items for good: the way that every removal of a file goes, of a whole clean as of a single item. An item
/// goes from the very folder in which it was found, which is held open meanwhile, or not at all. A folder that no list
/// of items can rightly hold is refused. Once an item of the desktop's trash is gone, the record of where it came from
/// goes as well.
///
/// Where the user may not remove it, the remover is asked, once, unless the folder that holds the item is locked
/// against change. Blocks; one thread, and not the main one. The remover outlives it.
class ItemRemover {
public:
    explicit ItemRemover(PrivilegedRemover& remover) : remover_(remover) {}

    /// `foundIn` is null for an item that no scan has found: it is then the one that is at the path.
    ItemRemoval remove(const std::filesystem::path& path, const std::shared_ptr<const FoundIn>& foundIn);

private:
    [[nodiscard]] bool leadsWhereItDid(const FoundIn& foundIn);
    /// 0, or the errno value that keeps the folder from being held.
    [[nodiscard]] int hold(const std::shared_ptr<const FoundIn>& foundIn, const std::filesystem::path& folder);
    ItemRemoval removeNow(const std::filesystem::path& path, const files::DirectoryHandle* folder);
    [[nodiscard]] bool isStillAt(const std::filesystem::path& path, const files::DirectoryHandle* folder) const;

    PrivilegedRemover& remover_;
    std::optional<ProtectedFolders> protected_;  ///< looked up for the first item
    std::map<std::shared_ptr<const platform::RootPlace>, bool> leads_;
    // The folder of the last item.
    std::shared_ptr<const FoundIn> holding_;
    std::optional<files::DirectoryHandle> held_;
    bool isTheOne_ = false;  ///< the one in which the items were found
};

/// Removes the item at the path.
ItemRemoval removeItemAt(const std::filesystem::path& path, PrivilegedRemover& remover = PrivilegedRemover::none());

}  // namespace brimvault::engine
