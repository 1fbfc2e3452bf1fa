#pragma once

#include <QtGlobal>

#include "engine/model/CleanableItem.h"

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

}  // namespace brimvault::engine
