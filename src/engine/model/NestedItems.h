#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "engine/model/FFItem.h"

namespace brimvault::engine {

/// An index of which items of a list lie in which others, by the paths that a removal acts on. It keeps the folders
/// sorted, and of the items only those that hold others, so that neither a batch of a scan nor a click walks through a
/// very long list. Main thread.
class NestedItems {
public:
    using Call = std::function<void(FFItem&)>;

    /// The list must outlive the index. Until `clear`, items may only be appended to it.
    explicit NestedItems(const ItemArray& items) : items_(items) {}

    /// Indexes the items appended since the last call, and unticks every holder of an unticked item, if either of the
    /// two is new.
    void addNew();
    void clear();

    /// Every item inside the item, at any depth.
    void forEachInside(const FFItem& item, const Call& call) const;
    /// Every item that holds the item.
    void forEachHolder(const FFItem& item, const Call& call) const;
    /// Unticks every item that holds one that is not ticked.
    void untickHoldersOfUnticked() const;
    [[nodiscard]] bool holdsAny() const { return !holders_.empty(); }
    /// Bytes that the ticked items inside other ticked ones would free by themselves.
    [[nodiscard]] quint64 freesRepeated() const;
    /// The paths of the items that hold others, sorted, each with a slash at the end.
    [[nodiscard]] std::vector<std::string> holders() const;
    /// Whether any item stands for several things. Such an item may lie in several others that do not hold each other,
    /// so that after a change of marks `untickHoldersOfUnticked` has to follow.
    [[nodiscard]] bool holdsTargets() const { return holdsTargets_; }

private:
    /// Consecutive items of the list that lie, or have a target, in one folder.
    struct Run {
        qsizetype first;
        qsizetype end;
    };
    using Folders = std::map<std::string, std::vector<Run>>;

    void addRun(std::map<std::string, qsizetype>& toSearch);
    void addRunIn(const std::string& folder, const Run& run, std::map<std::string, qsizetype>& toSearch);
    /// The names in the folder that lead to other folders with items.
    [[nodiscard]] std::set<std::string> namesThatHoldFolders(Folders::const_iterator folder) const;
    void findHoldersIn(Folders::const_iterator folder, qsizetype firstItem);
    void forEachBelow(const std::string& path, const Call& call) const;
    void forEachHolderOf(const std::string& path, const Call& call) const;
    [[nodiscard]] bool isAnyUnticked(const Run& run) const;
    /// Answers whether it did.
    bool untickIfItHoldsUnticked(const std::string& path, FFItem& holder) const;

    const ItemArray& items_;
    Folders folders_;                           ///< by path, with a slash at the end
    std::map<std::string, qsizetype> holders_;  ///< items that hold others, by path, with a slash at the end
    bool holdsTargets_ = false;
    qsizetype indexed_ = 0;  ///< how many items of the list are in the index
};

}  // namespace brimvault::engine
