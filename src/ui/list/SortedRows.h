#pragma once

#include <QHash>
#include <QList>
#include <deque>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

#include "engine/model/CleanableItem.h"

namespace brimvault::ui {

/// Hears of each change of SortedRows before and after it, as the views of a Qt model have to. Main thread.
class RowObserver {
public:
    virtual ~RowObserver() = default;

    virtual void willInsert(int first, int last) = 0;
    virtual void didInsert() = 0;
    virtual void willRemove(int first, int last) = 0;
    virtual void didRemove() = 0;
    virtual void willReorder() = 0;
    /// `placeNow` maps the place of a row before the change to its place after it.
    virtual void didReorder(const std::function<int(int before)>& placeNow) = 0;
};

enum class SortKey { checked, name, size, count };

/// Items in the order of a key. New items are merged into the rows that are there, and the order of names is always
/// kept beside the one on show, so that no change sorts a long list from scratch. Main thread.
class SortedRows {
public:
    using Item = std::shared_ptr<engine::CleanableItem>;
    using Count = std::function<quint32(const engine::CleanableItem&)>;

    /// The observer outlives the rows. `count` is empty where rows have no count.
    explicit SortedRows(RowObserver& observer, Count count = {});
    Q_DISABLE_COPY_MOVE(SortedRows)
    ~SortedRows();

    /// Adds those of the items that are not there yet.
    void append(const QList<Item>& items);
    /// Removes these items. Returns how many rows above `row` have stayed: if `row` itself was removed, the place of
    /// the one after it.
    int remove(const QList<const engine::CleanableItem*>& items, int row = 0);
    /// Removes all other items; answers as `remove` does.
    int keepOnly(const QList<Item>& items, int row = 0);

    void sort(SortKey key, Qt::SortOrder order);
    /// Restores the order if the rows are sorted by check marks and any item was ticked or unticked.
    void resortByMarks();
    /// Reads sizes and counts of all items again; false if none has changed.
    bool refreshValues();

    [[nodiscard]] int size() const { return static_cast<int>(rows_.size()); }
    [[nodiscard]] const Item& item(int row) const { return rows_[static_cast<std::size_t>(row)]->item; }
    [[nodiscard]] bool contains(const engine::CleanableItem* item) const { return known_.contains(item); }
    /// -1 if the item is not there.
    [[nodiscard]] int rowOf(const engine::CleanableItem* item) const;
    /// Calls for every item, in the order in which they lie in memory.
    template <typename Call>
    void forEachItem(Call call) const {
        for (const auto& row : store_) {
            if (!row.leaves()) {
                call(*row.item);
            }
        }
    }

private:
    /// There may be hundreds of thousands, so it is kept small.
    struct Row {
        Item item;
        quint64 size;    ///< bytes
        quint32 count;   ///< 0 without counts
        quint32 number;  ///< rows of equal names keep the order in which they came; see `leave`

        /// It is about to be removed.
        void leave() { number = std::numeric_limits<quint32>::max(); }
        [[nodiscard]] bool leaves() const { return number == std::numeric_limits<quint32>::max(); }
    };
    using Rows = std::vector<Row*>;

    [[nodiscard]] quint32 countOf(const engine::CleanableItem& item) const { return count_ ? count_(item) : 0; }

    [[nodiscard]] static bool isNameBefore(const Row* left, const Row* right);
    /// The sort key as a number that grows from the top; not for names.
    [[nodiscard]] quint64 rankOf(const Row& row) const;
    [[nodiscard]] bool isBefore(const Row* left, const Row* right) const;
    [[nodiscard]] Rows sorted() const;

    /// Takes the same rows in another order.
    void reorder(Rows rows);
    /// Removes the rows marked as gone; answers as `remove` does.
    int removeMarked(int row);
    void removeAll();
    void forget(const Rows& gone);
    /// Copies the remaining rows into a new store.
    void compactStore();

    RowObserver& observer_;
    const Count count_;
    std::deque<Row> store_;  ///< rows never move in it; it keeps those that are gone until it is compacted
    quint32 nextNumber_ = 0;
    Rows rows_;    ///< in the order on show
    Rows byName_;  ///< the same rows in the order of names
    QHash<const engine::CleanableItem*, Row*> known_;
    SortKey key_ = SortKey::name;
    Qt::SortOrder order_ = Qt::AscendingOrder;
    quint64 marksSorted_ = 0;  ///< the revision of the check marks at the last sort
};

}  // namespace brimvault::ui
