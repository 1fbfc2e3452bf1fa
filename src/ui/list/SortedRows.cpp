#include "ui/list/SortedRows.h"

#include <QSet>
#include <algorithm>
#include <limits>
#include <utility>

#include "engine/DeleteInBackground.h"

namespace brimvault::ui {

namespace {

// Finds the insertion point of each of the sorted values in a sorted range. The middle value is looked up first and
// halves the range for the others, so that n values in m rows take about n log(m / n) comparisons.
template <typename Place, typename Value, typename Before>
void findPlaces(const Value* firstValue, const Value* endOfValues, Place first, Place end, Place* places,
                Before before) {
    while (firstValue != endOfValues) {
        const auto middle = (endOfValues - firstValue) / 2;
        const Place place = std::upper_bound(first, end, firstValue[middle], before);
        places[middle] = place;
        findPlaces(firstValue, firstValue + middle, first, place, places, before);
        firstValue += middle + 1;
        places += middle + 1;
        first = place;
    }
}

// Merges the sorted tail from `firstNew` on into the sorted values before it. Each value moves once.
template <typename Value, typename Before>
void mergeTail(std::vector<Value>& values, std::size_t firstNew, Before before) {
    const auto firstAdded = values.begin() + static_cast<std::ptrdiff_t>(firstNew);
    const std::vector<Value> added(firstAdded, values.end());
    std::vector<typename std::vector<Value>::iterator> places(added.size());
    findPlaces(added.data(), added.data() + added.size(), values.begin(), firstAdded, places.data(), before);
    auto from = firstAdded;
    auto free = values.end();
    for (std::size_t next = added.size(); next-- > 0;) {
        free = std::move_backward(places[next], from, free);
        *--free = added[next];
        from = places[next];
    }
}

}  // namespace

SortedRows::SortedRows(RowObserver& observer, Count count) : observer_(observer), count_(std::move(count)) {}

SortedRows::~SortedRows() { engine::deleteInBackground(std::move(store_)); }

// --- Coming and going -------------------------------------------------------------------------------------------

void SortedRows::append(const QList<Item>& items) {
    resortByMarks();
    Rows added;
    for (const auto& item : items) {
        auto& known = known_[item.get()];
        if (known == nullptr) {
            item->watchMarks();
            store_.push_back({item, item->ppnSize(), countOf(*item), nextNumber_++});
            known = &store_.back();
            added.push_back(known);
        }
    }
    if (added.empty()) {
        return;
    }
    const std::size_t before = rows_.size();
    std::sort(added.begin(), added.end(), isNameBefore);
    byName_.insert(byName_.end(), added.begin(), added.end());
    mergeTail(byName_, before, isNameBefore);

    const auto isRowBefore = [this](const Row* left, const Row* right) { return isBefore(left, right); };
    if (key_ != SortKey::name) {
        std::sort(added.begin(), added.end(), isRowBefore);
    }
    observer_.willInsert(static_cast<int>(before), static_cast<int>(before + added.size()) - 1);
    rows_.insert(rows_.end(), added.begin(), added.end());
    observer_.didInsert();
    if (key_ == SortKey::name) {
        reorder(sorted());
    } else {
        Rows merged = rows_;
        mergeTail(merged, before, isRowBefore);
        reorder(std::move(merged));
    }
}

int SortedRows::remove(const QList<const engine::CleanableItem*>& items, int row) {
    for (const auto* item : items) {
        if (auto* known = known_.value(item)) {
            known->leave();
        }
    }
    return removeMarked(row);
}

int SortedRows::keepOnly(const QList<Item>& items, int row) {
    if (items.isEmpty() && !rows_.empty()) {
        removeAll();
        return 0;
    }
    QSet<const engine::CleanableItem*> wanted;
    wanted.reserve(items.size());
    for (const auto& item : items) {
        wanted.insert(item.get());
    }
    for (auto* known : std::as_const(rows_)) {
        if (!wanted.contains(known->item.get())) {
            known->leave();
        }
    }
    return removeMarked(row);
}

// Moves the rows that go to the end and removes them there: one removal for the observer, however scattered they were.
int SortedRows::removeMarked(int row) {
    const auto stays = [](const Row* known) { return !known->leaves(); };
    Rows order = rows_;
    const auto firstGone = std::stable_partition(order.begin(), order.end(), stays);
    if (firstGone == order.end()) {
        return row;
    }
    if (firstGone == order.begin()) {
        removeAll();
        return 0;
    }
    const auto above = std::count_if(rows_.begin(), rows_.begin() + std::min(row, size()), stays);
    const Rows gone(firstGone, order.end());
    const auto kept = static_cast<std::size_t>(firstGone - order.begin());
    reorder(std::move(order));
    observer_.willRemove(static_cast<int>(kept), size() - 1);
    rows_.resize(kept);
    std::erase_if(byName_, [](const Row* known) { return known->leaves(); });
    forget(gone);
    observer_.didRemove();
    return static_cast<int>(above);
}

void SortedRows::forget(const Rows& gone) {
    if (gone.size() > rows_.size()) {
        compactStore();
        return;
    }
    std::vector<Item> items;
    items.reserve(gone.size());
    for (auto* row : gone) {
        known_.remove(row->item.get());
        items.push_back(std::move(row->item));
    }
    engine::deleteInBackground(std::move(items));
}

void SortedRows::compactStore() {
    auto before = std::exchange(store_, {});
    known_.clear();
    for (const auto* row : rows_) {
        store_.push_back(*row);
        known_.insert(row->item.get(), &store_.back());
    }
    for (auto* rows : {&rows_, &byName_}) {
        std::transform(rows->begin(), rows->end(), rows->begin(),
                       [this](const Row* row) { return known_.value(row->item.get()); });
    }
    engine::deleteInBackground(std::move(before));
}

void SortedRows::removeAll() {
    observer_.willRemove(0, size() - 1);
    rows_.clear();
    byName_.clear();
    known_.clear();
    engine::deleteInBackground(std::exchange(store_, {}));
    observer_.didRemove();
}

// --- Order ------------------------------------------------------------------------------------------------------

bool SortedRows::isNameBefore(const Row* left, const Row* right) {
    const int result = left->item->nameKey().compare(right->item->nameKey());
    return result != 0 ? result < 0 : left->number < right->number;
}

quint64 SortedRows::rankOf(const Row& row) const {
    const quint64 value = key_ == SortKey::checked ? (row.item->ppbChecked() ? 1 : 0)
                          : key_ == SortKey::size  ? row.size
                                                   : row.count;
    return order_ == Qt::AscendingOrder ? value : std::numeric_limits<quint64>::max() - value;
}

// Rows of equal rank stand in the order of names, whichever way the rank is sorted.
bool SortedRows::isBefore(const Row* left, const Row* right) const {
    if (key_ == SortKey::name) {
        return order_ == Qt::AscendingOrder ? isNameBefore(left, right) : isNameBefore(right, left);
    }
    const quint64 leftRank = rankOf(*left);
    const quint64 rightRank = rankOf(*right);
    return leftRank != rightRank ? leftRank < rightRank : isNameBefore(left, right);
}

// Starts from the order of names and sorts (rank, place) pairs, which lie side by side in memory: this takes a fraction
// of the time that comparing the rows takes, each of which is a cache miss.
SortedRows::Rows SortedRows::sorted() const {
    if (key_ == SortKey::name) {
        return order_ == Qt::AscendingOrder ? byName_ : Rows(byName_.rbegin(), byName_.rend());
    }
    if (key_ == SortKey::checked) {
        Rows rows = byName_;
        std::stable_partition(rows.begin(), rows.end(), [this](const Row* row) {
            return row->item->ppbChecked() == (order_ == Qt::DescendingOrder);
        });
        return rows;
    }
    std::vector<std::pair<quint64, std::size_t>> ranks;
    ranks.reserve(byName_.size());
    for (const auto* row : byName_) {
        ranks.emplace_back(rankOf(*row), ranks.size());
    }
    std::sort(ranks.begin(), ranks.end());
    Rows rows;
    rows.reserve(ranks.size());
    for (const auto& [rank, place] : ranks) {
        rows.push_back(byName_[place]);
    }
    return rows;
}

void SortedRows::sort(SortKey key, Qt::SortOrder order) {
    key_ = key;
    order_ = order;
    marksSorted_ = engine::CleanableItem::marksRevision();
    reorder(sorted());
}

void SortedRows::resortByMarks() {
    const quint64 revision = engine::CleanableItem::marksRevision();
    if (std::exchange(marksSorted_, revision) != revision && key_ == SortKey::checked) {
        reorder(sorted());
    }
}

bool SortedRows::refreshValues() {
    bool changed = false;
    for (auto* row : rows_) {
        const quint64 size = row->item->ppnSize();
        const quint32 count = countOf(*row->item);
        changed = changed || size != row->size || count != row->count;
        row->size = size;
        row->count = count;
    }
    if (changed) {
        reorder(sorted());
    }
    return changed;
}

void SortedRows::reorder(Rows rows) {
    if (rows == rows_) {
        return;
    }
    observer_.willReorder();
    rows_.swap(rows);
    const Rows& before = rows;
    observer_.didReorder([&](int place) {
        const auto now = std::find(rows_.begin(), rows_.end(), before[static_cast<std::size_t>(place)]);
        return static_cast<int>(now - rows_.begin());
    });
}

int SortedRows::rowOf(const engine::CleanableItem* item) const {
    const auto found = std::find(rows_.begin(), rows_.end(), known_.value(item));
    return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

}  // namespace brimvault::ui
