#pragma once

#include <QtGlobal>
#include <algorithm>
#include <string>
#include <vector>

#include "engine/model/CleanableItem.h"
#include "engine/model/FFItem.h"
#include "engine/model/NestedItems.h"

namespace brimvault::engine {

/// Sums over items, with the sizes and marks that they have when they are added.
struct ItemSums {
    quint64 all = 0;         ///< bytes
    quint64 selected = 0;    ///< bytes
    quint64 frees = 0;       ///< bytes on disk that cleaning each selected item alone would free
    quint64 repeated = 0;    ///< of these, bytes that lie in a selected item inside another
    qsizetype ticked = 0;    ///< of the items that lists show
    qsizetype unticked = 0;  ///< of the items that lists show and that a tick of all would tick

    void add(const CleanableItem& item) {
        const quint64 size = item.ppnSize();
        all += size;
        selected += item.ppnSizeSel();
        frees += item.freesBySel();
        if (size != 0) {
            const bool checked = item.ppbChecked();
            ticked += checked ? 1 : 0;
            unticked += !checked && item.ppbDeletable() && !item.isTickedByHandOnly() ? 1 : 0;
        }
    }
    /// Bytes on disk that cleaning all selected items would free, without files that have names in several of them.
    [[nodiscard]] quint64 freesSelected() const { return frees - std::min(repeated, frees); }
    /// -1 some, 0 none, 1 all; what cannot be removed, or is ticked by hand alone, counts only if it is ticked.
    [[nodiscard]] int checkstate() const { return ticked == 0 ? 0 : unticked == 0 ? 1 : -1; }
};

/// The items of a section of files, for hundreds of thousands: sums are cached as items come, and lists can update
/// incrementally by a generation number and the removed items. An item that holds others of the list is ticked only
/// while all of these are, since they would be removed with it. Main thread.
class SectionItems {
public:
    SectionItems() = default;
    SectionItems(const SectionItems&) = delete;
    SectionItems& operator=(const SectionItems&) = delete;

    [[nodiscard]] const ItemArray& items() const { return items_; }

    void replace(const ItemArray& items);
    void append(const ItemArray& items);
    /// Drops those of them that are in the list.
    void remove(const ItemArray& gone);

    /// Ticks or unticks the item with all that lies in it, then unticks every holder of an unticked item. Items that
    /// may not be ticked along keep their marks. Answers whether other items may have changed as well.
    bool setChecked(FFItem& item, bool checked);
    /// The paths of the items that hold others, sorted, each with a slash at the end.
    [[nodiscard]] std::vector<std::string> holders() const { return nested_.holders(); }
    /// To be called after the marks of many items were set one by one: unticks every holder of an unticked item.
    void settleMarks();

    /// To be called after items' `frees` have changed.
    void freesChanged() { summed_ = 0; }

    /// While this number is unchanged, items are only appended: those that were there keep their indexes.
    [[nodiscard]] quint64 generation() const { return generation_; }
    /// The difference to the generation before, if items were only removed; empty after any other change, and after
    /// `forgetRemoved`.
    [[nodiscard]] const ItemArray& removed() const { return removed_; }
    void forgetRemoved();

    /// With the current marks.
    [[nodiscard]] const ItemSums& sums() const;

private:
    void beginGeneration();
    void removeMajority(const ItemArray& gone);

    ItemArray items_;
    NestedItems nested_{items_};
    ItemArray removed_;
    quint64 generation_ = 0;
    mutable ItemSums sums_;  ///< cache: sums of the first `summed_` items
    mutable qsizetype summed_ = 0;
    mutable quint64 marksRevision_ = 0;  ///< of the cache
};

}  // namespace brimvault::engine
