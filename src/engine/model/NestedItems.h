#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "engine/model/FFItem.h"

namespace brimvault::engine {

/// Which items of a list lie in which others, by their paths. Folders are kept in sorted order, and of the items only
/// those that hold others, so that neither a batch of a scan nor a click looks through a very long list. Main thread.
class NestedItems {
public:
    using Call = std::function<void(FFItem&)>;

    /// The list outlives it. It changes behind what was taken in only, until `clear`.
    explicit NestedItems(const ItemArray& items) : items_(items) {}

    /// Takes in the items that came since, and unticks what holds one of them that is not ticked, or is one of them and
    /// holds such an item.
    void follow();
    void clear();

    /// Every item that lies in the item, however deep.
    void forEachInside(const FFItem& item, const Call& call) const;
    /// Every item that the item lies in.
    void forEachHolder(const FFItem& item, const Call& call) const;
    /// Unticks every item that holds one that is not ticked.
    void untickHoldersOfUnticked() const;

private:
    /// Items that follow each other in the list and lie in one folder.
    struct Run {
        qsizetype first;
        qsizetype end;
    };
    using Folders = std::map<std::string, std::vector<Run>>;

    void takeRun(std::map<std::string, qsizetype>& toSearch);
    /// The names in the folder with which the paths of other folders that have items go on.
    [[nodiscard]] std::set<std::string> namesThatHoldFolders(Folders::const_iterator folder) const;
    void findHoldersIn(Folders::const_iterator folder, qsizetype firstItem);
    void forEachHolderOf(const std::string& path, const Call& call) const;
    [[nodiscard]] bool isAnyUnticked(const Run& run) const;
    void untickIfItHoldsUnticked(const std::string& path, FFItem& holder) const;

    const ItemArray& items_;
    Folders folders_;                           ///< by path, with a slash at the end
    std::map<std::string, qsizetype> holders_;  ///< items that hold others, by path, with a slash at the end
    qsizetype taken_ = 0;
};

}  // namespace brimvault::engine
