#pragma once

#include <filesystem>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "engine/model/FFItem.h"
#include "engine/notification/Notification.h"
#include "engine/operations/SectionOperation.h"
#include "engine/removal/ItemRemoval.h"
#include "engine/removal/PrivilegedRemover.h"

namespace brimvault::engine {

/// The base of the clean operations of files. Runs on the clean queue's thread. The items are shared with the model,
/// which does not change their marks while a clean runs.
class CBaseOperation2 : public SectionOperation {
public:
    /// The remover removes what the user may not; it outlives the operation.
    CBaseOperation2(Section section, const ItemArray& items, PrivilegedRemover& remover)
        : SectionOperation(section), pCArray_(items), remover_(remover) {}

    /// Permanently removes every item that is checked, deletable and not of size 0. An item that is gone is added to
    /// `removed`, also if there was nothing at its path, or if it was emptied since a process writes to it; any other
    /// to `notRemoved`, with the system's reason. After a cancel the current item is finished, and no other begun.
    ///
    /// A folder stays if it holds another item of the list that is not checked or not agreed to. Of an item that stands
    /// for several things these alone are removed.
    /// An item without a path is looked up by its name in the folder where a scan found it, else in `folder`; without
    /// either it counts as gone.
    void removeItems(const ItemArray& items, const std::optional<std::filesystem::path>& folder, ItemArray& removed,
                     NotRemovedDictionary& notRemoved);

protected:
    [[nodiscard]] const ItemArray& pCArray() const { return pCArray_; }
    /// Removes the items and posts the section's clean-finished notification with the two results. A clean that is
    /// cancelled, fails or is given up posts what was done until then. `root` is the path of the section's folder; none
    /// if the items lie in several.
    void cleanAndPost(const std::optional<std::filesystem::path>& root);
    /// Called once a clean has come to its end.
    virtual void afterRemoving(const ItemRemover& /*remover*/) {}
    void failed() override { postResults(); }
    void givenUp() override { postResults(); }

private:
    /// The paths are those that the removal acted on.
    void take(const ItemRemoval& removal, const std::shared_ptr<FFItem>& item, std::vector<std::filesystem::path> paths,
              ItemArray& removed, NotRemovedDictionary& notRemoved);
    [[nodiscard]] bool isToBeCleaned(const FFItem& item) const;
    [[nodiscard]] std::set<std::string> sparedPaths(const ItemArray& items) const;
    void postResults();

    const ItemArray pCArray_;
    PrivilegedRemover& remover_;
    bool isRootRefused_ = false;  ///< then items that no scan found are not removed
    std::mutex resultsMutex_;     ///< protects what follows, which is posted by the thread that gives up
    ItemArray removed_;
    NotRemovedDictionary notRemoved_;
};

}  // namespace brimvault::engine
