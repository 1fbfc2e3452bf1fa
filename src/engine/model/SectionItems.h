#pragma once

#include <QtGlobal>

#include "engine/model/CleanableItem.h"
#include "engine/model/FFItem.h"
#include "engine/model/NestedItems.h"

namespace brimvault::engine {

/// What a number of items comes to, as their sizes and marks are when they are added.
struct ItemSums {
    quint64 all = 0;         ///< bytes
    quint64 selected = 0;    ///< bytes
    qsizetype ticked = 0;    ///< of the items that lists show
    qsizetype unticked = 0;  ///< of the items that lists show and that may be removed

    void add(const CleanableItem& item) {
        const quint64 size = item.ppnSize();
        all += size;
        selected += item.ppnSizeSel();
        if (size != 0) {
            const bool checked = item.ppbChecked();
            ticked += checked ? 1 : 0;
            unticked += !checked && item.ppbDeletable() ? 1 : 0;
        }
    }
    /// -1 some, 0 none, 1 all; what cannot be removed counts only when it is ticked.
    [[nodiscard]] int checkstate() const { return ticked == 0 ? 0 : unticked == 0 ? 1 : -1; }
};

/// What a section of files holds, however much that is: sums are kept as items come, and lists are told what became of
/// the items that they have taken in. An item that holds others of the list is ticked only while all of these are,
/// since they would go with it. Main thread.
class SectionItems {
public:
    SectionItems() = default;
    SectionItems(const SectionItems&) = delete;
    SectionItems& operator=(const SectionItems&) = delete;

    [[nodiscard]] const ItemArray& items() const { return items_; }

    void replace(const ItemArray& items);
    void append(const ItemArray& items);
    /// Drops every one of them that is there.
    void remove(const ItemArray& gone);

    /// Ticks or unticks the item with all that lies in it, and unticks what holds an item that is not ticked then. What
    /// may not be ticked along stays as it is. Answers whether other items may have changed as well.
    bool setChecked(FFItem& item, bool checked);
    /// After the marks of many were set one by one: unticks what holds an item that is not ticked.
    void settleMarks();

    /// The items that were there stay there, and what comes is behind them, for as long as this number is the same.
    [[nodiscard]] quint64 generation() const { return generation_; }
    /// What was removed, and nothing else, since the generation before; empty when something else became of the items,
    /// or when `forgetRemoved` was called.
    [[nodiscard]] const ItemArray& removed() const { return removed_; }
    void forgetRemoved();

    /// With the marks that the items have now.
    [[nodiscard]] const ItemSums& sums() const;

private:
    void beginGeneration();
    void removeMost(const ItemArray& gone);

    ItemArray items_;
    NestedItems nested_{items_};
    ItemArray removed_;
    quint64 generation_ = 0;
    // Those of the items up to a place, as long as no mark has changed.
    mutable ItemSums sums_;
    mutable qsizetype summed_ = 0;
    mutable quint64 marksRevision_ = 0;
};

}  // namespace brimvault::engine
