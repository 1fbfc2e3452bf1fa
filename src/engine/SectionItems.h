#pragma once

#include "engine/FFItem.h"
#include "engine/ItemSums.h"

namespace brimvault::engine {

/// What a section of files holds, however much that is: sums are kept as items come, and lists are told what became of
/// the items that they have taken in. Main thread.
class SectionItems {
public:
    [[nodiscard]] const ItemArray& items() const { return items_; }

    void replace(const ItemArray& items);
    void append(const ItemArray& items);
    /// Drops every one of them that is there.
    void remove(const ItemArray& gone);

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
    ItemArray removed_;
    quint64 generation_ = 0;
    // Those of the items up to a place, as long as no mark has changed.
    mutable ItemSums sums_;
    mutable qsizetype summed_ = 0;
    mutable quint64 marksRevision_ = 0;
};

}  // namespace brimvault::engine
