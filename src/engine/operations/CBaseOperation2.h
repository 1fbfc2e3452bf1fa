#pragma once

#include <filesystem>
#include <mutex>
#include <optional>
#include <set>
#include <string>

#include "engine/model/FFItem.h"
#include "engine/notification/Notification.h"
#include "engine/operations/SectionOperation.h"
#include "engine/removal/ItemRemoval.h"
#include "engine/removal/PrivilegedRemover.h"

namespace brimvault::engine {

/// The base of the clean operations of files. Runs on the clean queue's thread; the items are the model's own, and
/// their marks are not changed while a clean runs.
class CBaseOperation2 : public SectionOperation {
public:
    /// The remover is asked for what the user may not remove; it outlives the operation.
    CBaseOperation2(Section section, const ItemArray& items, PrivilegedRemover& remover)
        : SectionOperation(section), pCArray_(items), remover_(remover) {}

    /// Removes, for good, every item that is checked, deletable and not of size 0, and adds to one of the two results:
    /// to those that are gone, also when there was nothing at the path any more, or with the system's reason to the
    /// dictionary. Stops before the next item once the operation is cancelled; the one under way is finished first.
    ///
    /// A folder that holds another item of the list, one that is not checked or not agreed to, stays as well.
    /// An item without a path of its own is the one of its name in the folder where a scan has found it, else in the
    /// one given; without a folder there is nothing.
    void removeItems(const ItemArray& items, const std::optional<std::filesystem::path>& folder, ItemArray& removed,
                     NotRemovedDictionary& notRemoved);

protected:
    [[nodiscard]] const ItemArray& pCArray() const { return pCArray_; }
    /// Removes the items and posts the section's clean-finished notification with the two results, also after a cancel,
    /// or with what was done by then when it fails or is given up. `root` is where the section's folder is looked for;
    /// none where the items lie in several.
    void cleanAndPost(const std::optional<std::filesystem::path>& root);
    void failed() override { postResults(); }
    void givenUp() override { postResults(); }

private:
    void take(const ItemRemoval& removal, const std::shared_ptr<FFItem>& item, ItemArray& removed,
              NotRemovedDictionary& notRemoved);
    [[nodiscard]] bool isToBeCleaned(const FFItem& item) const;
    [[nodiscard]] std::set<std::string> sparedPaths(const ItemArray& items) const;
    void postResults();

    const ItemArray pCArray_;
    PrivilegedRemover& remover_;
    bool isRootRefused_ = false;  ///< what no scan has found is not looked for in the section's folder
    std::mutex resultsMutex_;     ///< protects what follows: who gives the operation up tells of it
    ItemArray removed_;
    NotRemovedDictionary notRemoved_;
};

}  // namespace brimvault::engine
