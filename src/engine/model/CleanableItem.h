#pragma once

#include <QString>
#include <QtGlobal>
#include <atomic>

#include "platform/text/NameKey.h"

namespace brimvault::engine {

/// The base of the rows of all sections: name, size, and whether the item is to be cleaned. The two marks may be read
/// on any thread while the main thread changes them. All else is set before the item is posted, or belongs to the main
/// thread.
class CleanableItem {
public:
    CleanableItem() = default;
    CleanableItem(const CleanableItem&) = delete;
    CleanableItem& operator=(const CleanableItem&) = delete;
    virtual ~CleanableItem() = default;

    /// Ticked for cleaning by the user.
    [[nodiscard]] bool ppbChecked() const { return checked_; }
    void setPpbChecked(bool checked) { setMark(checked_, checked); }
    /// May be removed at all; false until a scanner sets it.
    [[nodiscard]] bool ppbDeletable() const { return deletable_; }
    void setPpbDeletable(bool deletable) { setMark(deletable_, deletable); }
    /// Whether only the user's own hand ticks it: not a tick of all items, nor one of an item that holds it.
    [[nodiscard]] virtual bool isTickedByHandOnly() const { return false; }
    /// From now on a change of its marks changes `marksRevision`. Not before: no sum includes the item yet.
    void watchMarks() { watched_ = true; }
    /// A counter that grows whenever a mark of any watched item changes.
    [[nodiscard]] static quint64 marksRevision() { return marksRevision_; }

    /// For display.
    [[nodiscard]] virtual QString ppdisplayName() const = 0;
    /// The name without its extension, to sort by.
    [[nodiscard]] virtual QString ppdisplayKeyName() const = 0;
    /// The sort key made of these two. The scan's thread makes it, since that takes long.
    [[nodiscard]] const platform::NameKey& nameKey() const;
    /// Bytes that the item holds, or that cleaning it would free.
    [[nodiscard]] virtual quint64 getSpace2Save() const = 0;
    /// The same as far as it is selected: 0 unless the item is checked and deletable.
    [[nodiscard]] virtual quint64 getSpace2SaveBySel() const = 0;

    /// Bytes on disk that come free when it alone is cleaned: what has names elsewhere too is left out. The same as its
    /// size where nothing else is known.
    [[nodiscard]] virtual quint64 frees() const = 0;
    [[nodiscard]] quint64 freesBySel() const { return ppbChecked() && ppbDeletable() ? frees() : 0; }
    /// Whether that differs so much from the size that the user should know: by more than a tenth. A file hardly ever
    /// fills its last block, so that many take somewhat more than their lengths, and tiny ones nothing at all.
    [[nodiscard]] bool isFreesWorthTelling() const { return isWorthTelling(ppnSize(), frees()); }
    [[nodiscard]] static constexpr bool isWorthTelling(quint64 size, quint64 frees) {
        constexpr quint64 tenth = 10;
        constexpr quint64 lastBlocks = 100'000;
        constexpr quint64 tiny = 4096;
        return frees < size ? size > tiny && size - frees > size / tenth
                            : frees - size >= lastBlocks && frees - size > size / tenth;
    }

    [[nodiscard]] quint64 ppnSize() const { return getSpace2Save(); }
    [[nodiscard]] quint64 ppnSizeSel() const { return getSpace2SaveBySel(); }

protected:
    void nameChanged() { nameKey_ = {}; }

private:
    void setMark(std::atomic<bool>& mark, bool value) {
        if (mark.exchange(value) != value && watched_) {
            ++marksRevision_;
        }
    }

    static inline std::atomic<quint64> marksRevision_ = 0;
    mutable platform::NameKey nameKey_;
    std::atomic<bool> checked_ = true;
    std::atomic<bool> deletable_ = false;
    std::atomic<bool> watched_ = false;
};

inline const platform::NameKey& CleanableItem::nameKey() const {
    if (!nameKey_.isMade()) {
        nameKey_ = platform::NameKey(ppdisplayKeyName(), ppdisplayName());
    }
    return nameKey_;
}

}  // namespace brimvault::engine
