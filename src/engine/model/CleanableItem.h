#pragma once

#include <QString>
#include <QtGlobal>
#include <atomic>

#include "platform/NameKey.h"

namespace brimvault::engine {

/// What every row of every section answers: its name, its size, and whether it is to be cleaned. The two marks may be
/// read on any thread while the main thread shows and changes them; all else is settled before an item is posted, or
/// belongs to the main thread.
class CleanableItem {
public:
    CleanableItem() = default;
    CleanableItem(const CleanableItem&) = delete;
    CleanableItem& operator=(const CleanableItem&) = delete;
    virtual ~CleanableItem() = default;

    /// Ticked for cleaning by the user.
    [[nodiscard]] bool ppbChecked() const { return checked_; }
    void setPpbChecked(bool checked) { setMark(checked_, checked); }
    /// May be removed at all; NO until a scanner says otherwise.
    [[nodiscard]] bool ppbDeletable() const { return deletable_; }
    void setPpbDeletable(bool deletable) { setMark(deletable_, deletable); }
    /// From now on a change of its marks changes `marksRevision`; before, nobody has counted them.
    void watchMarks() { watched_ = true; }
    /// Another one whenever a mark of any watched item has changed.
    [[nodiscard]] static quint64 marksRevision() { return marksRevision_; }

    /// For display.
    [[nodiscard]] virtual QString ppdisplayName() const = 0;
    /// The name without its extension, to sort by.
    [[nodiscard]] virtual QString ppdisplayKeyName() const = 0;
    /// Where it stands by these two. Items come with theirs from the thread that finds them.
    [[nodiscard]] const platform::NameKey& nameKey() const;
    /// Bytes that the item holds, or that cleaning it would free.
    [[nodiscard]] virtual quint64 getSpace2Save() const = 0;
    /// The same as far as it is selected: 0 unless the item is checked and deletable.
    [[nodiscard]] virtual quint64 getSpace2SaveBySel() const = 0;

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
