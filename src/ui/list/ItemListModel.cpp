#include "ui/list/ItemListModel.h"

#include <QSet>
#include <QTextDocument>
#include <algorithm>
#include <limits>
#include <utility>

#include "engine/DeleteInBackground.h"
#include "engine/model/FileSize.h"

namespace brimvault::ui {

namespace {

// Where each of the sorted values is to stand among others, sorted likewise: the middle one is looked for first, and
// each half on its side of it, so that few are compared however many there are.
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

// Puts what stands from `firstNew` on, sorted as what is before it, in its places. Each of the others moves once.
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

ItemListModel::ItemListModel(Texts texts, QObject* parent) : QAbstractTableModel(parent), texts_(std::move(texts)) {}

ItemListModel::~ItemListModel() { engine::deleteInBackground(std::move(store_)); }

int ItemListModel::setItems(const QList<Item>& items, int row) {
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
        known->gone = !wanted.contains(known->item.get());
    }
    const int place = removeMarked(row);
    if (texts_.valuesChange && updateValues()) {
        reorder(sortedRows());
        Q_EMIT dataChanged(index(0, sizeColumn), index(rowCount() - 1, columnCount() - 1), {Qt::DisplayRole});
    }
    appendItems(items);
    return place;
}

void ItemListModel::appendItems(const QList<Item>& items) {
    followMarks();
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
    if (sortColumn_ != nameColumn) {
        std::sort(added.begin(), added.end(), isRowBefore);
    }
    beginInsertRows({}, static_cast<int>(before), static_cast<int>(before + added.size()) - 1);
    rows_.insert(rows_.end(), added.begin(), added.end());
    endInsertRows();
    if (sortColumn_ == nameColumn) {
        reorder(sortedRows());
    } else {
        Rows merged = rows_;
        mergeTail(merged, before, isRowBefore);
        reorder(std::move(merged));
    }
}

int ItemListModel::removeItems(const QList<const engine::CleanableItem*>& items, int row) {
    for (const auto* item : items) {
        if (auto* known = known_.value(item)) {
            known->gone = true;
        }
    }
    return removeMarked(row);
}

// Rows to go are moved to the end and dropped there at once: one change for the views, however they lay scattered.
int ItemListModel::removeMarked(int row) {
    const auto stays = [](const Row* known) { return !known->gone; };
    Rows order = rows_;
    const auto firstGone = std::stable_partition(order.begin(), order.end(), stays);
    if (firstGone == order.end()) {
        return row;
    }
    if (firstGone == order.begin()) {
        removeAll();
        return 0;
    }
    const auto above = std::count_if(rows_.begin(), rows_.begin() + std::min(row, rowCount()), stays);
    const Rows gone(firstGone, order.end());
    const auto kept = static_cast<std::size_t>(firstGone - order.begin());
    reorder(std::move(order));
    beginRemoveRows({}, static_cast<int>(kept), rowCount() - 1);
    rows_.resize(kept);
    std::erase_if(byName_, [](const Row* known) { return known->gone; });
    forget(gone);
    endRemoveRows();
    return static_cast<int>(above);
}

void ItemListModel::forget(const Rows& gone) {
    if (gone.size() > rows_.size()) {
        renewStore();
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

void ItemListModel::renewStore() {
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

void ItemListModel::removeAll() {
    beginRemoveRows({}, 0, rowCount() - 1);
    rows_.clear();
    byName_.clear();
    known_.clear();
    engine::deleteInBackground(std::exchange(store_, {}));
    endRemoveRows();
}

bool ItemListModel::updateValues() {
    bool changed = false;
    for (auto* row : rows_) {
        const quint64 size = row->item->ppnSize();
        const quint32 count = countOf(*row->item);
        changed = changed || size != row->size || count != row->count;
        row->size = size;
        row->count = count;
    }
    return changed;
}

int ItemListModel::rowOf(const engine::CleanableItem* item) const {
    const auto found = std::find(rows_.begin(), rows_.end(), known_.value(item));
    return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

void ItemListModel::setAllChecked(bool checked) {
    for (const auto& row : store_) {
        if (!row.gone) {
            row.item->setPpbChecked(checked && row.item->ppbDeletable());
        }
    }
    checksChanged(0, rowCount() - 1);
}

// --- Order ------------------------------------------------------------------------------------------------------

bool ItemListModel::isNameBefore(const Row* left, const Row* right) {
    const int result = left->item->nameKey().compare(right->item->nameKey());
    return result != 0 ? result < 0 : left->number < right->number;
}

quint64 ItemListModel::rankOf(const Row& row) const {
    const quint64 value = sortColumn_ == checkColumn  ? (row.item->ppbChecked() ? 1 : 0)
                          : sortColumn_ == sizeColumn ? row.size
                                                      : row.count;
    return sortOrder_ == Qt::AscendingOrder ? value : std::numeric_limits<quint64>::max() - value;
}

// Where the column says nothing, rows stand in the order of names.
bool ItemListModel::isBefore(const Row* left, const Row* right) const {
    if (sortColumn_ == nameColumn) {
        return sortOrder_ == Qt::AscendingOrder ? isNameBefore(left, right) : isNameBefore(right, left);
    }
    const quint64 leftRank = rankOf(*left);
    const quint64 rightRank = rankOf(*right);
    return leftRank != rightRank ? leftRank < rightRank : isNameBefore(left, right);
}

// From the order of names, and numbers beside each other are sorted in a fraction of the time that rows take, which lie
// all over the memory.
ItemListModel::Rows ItemListModel::sortedRows() const {
    if (sortColumn_ == nameColumn) {
        return sortOrder_ == Qt::AscendingOrder ? byName_ : Rows(byName_.rbegin(), byName_.rend());
    }
    if (sortColumn_ == checkColumn) {
        Rows rows = byName_;
        std::stable_partition(rows.begin(), rows.end(), [this](const Row* row) {
            return row->item->ppbChecked() == (sortOrder_ == Qt::DescendingOrder);
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

void ItemListModel::sort(int column, Qt::SortOrder order) {
    if (column == iconColumn) {
        return;
    }
    sortColumn_ = column;
    sortOrder_ = order;
    marksSorted_ = engine::CleanableItem::marksRevision();
    reorder(sortedRows());
}

void ItemListModel::followMarks() {
    const quint64 revision = engine::CleanableItem::marksRevision();
    if (std::exchange(marksSorted_, revision) != revision && sortColumn_ == checkColumn) {
        reorder(sortedRows());
    }
}

void ItemListModel::reorder(Rows rows) {
    if (rows == rows_) {
        return;
    }
    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    rows_.swap(rows);
    QHash<int, int> places;  // of the few rows that are selected, current or held by an assistive client
    QModelIndexList after;
    for (const QModelIndex& index : before) {
        auto place = places.find(index.row());
        if (place == places.end()) {
            const auto* row = rows[static_cast<std::size_t>(index.row())];
            place = places.insert(index.row(),
                                  static_cast<int>(std::find(rows_.begin(), rows_.end(), row) - rows_.begin()));
        }
        after.append(this->index(*place, index.column()));
    }
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
    Q_EMIT rowsReordered();
}

void ItemListModel::checksChanged(int firstRow, int lastRow) {
    if (firstRow <= lastRow) {
        Q_EMIT dataChanged(index(firstRow, checkColumn), index(lastRow, checkColumn), {Qt::CheckStateRole});
    }
}

void ItemListModel::setEnabled(bool enabled) {
    enabled_ = enabled;
    if (!rows_.empty()) {
        Q_EMIT dataChanged(index(0, checkColumn), index(rowCount() - 1, checkColumn));  // another look, the same states
    }
}

int ItemListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int ItemListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : texts_.count ? countColumn + 1 : sizeColumn + 1;
}

QVariant ItemListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    const auto& shown = *item(index.row());
    if (role == Qt::ToolTipRole) {
        const QString text = texts_.tooltip(shown);  // a name may look like markup, and is shown as it is
        return text.isEmpty() ? QVariant() : Qt::convertFromPlainText(text, Qt::WhiteSpaceNoWrap);
    }
    switch (index.column()) {
        case checkColumn:
            return checkData(shown, role);
        case iconColumn:
            return role == iconRole ? QVariant::fromValue(texts_.icon(shown)) : QVariant();
        case nameColumn:
            return role == Qt::DisplayRole ? texts_.name(shown) : QVariant();
        case countColumn:
            return role == Qt::DisplayRole ? QString::number(texts_.count(shown)) : QVariant();
        default:
            return role == Qt::DisplayRole ? engine::FileSize::formatMemoryStringDot1(shown.ppnSize()) : QVariant();
    }
}

QVariant ItemListModel::checkData(const engine::CleanableItem& item, int role) const {
    if (role == Qt::CheckStateRole) {
        return item.ppbChecked() ? Qt::Checked : Qt::Unchecked;
    }
    return role == Qt::AccessibleTextRole ? texts_.name(item) : QVariant();
}

bool ItemListModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || index.column() != checkColumn || role != Qt::CheckStateRole || !enabled_) {
        return false;
    }
    Q_EMIT checkRequested(index.row(), value.toInt() == Qt::Checked);
    return true;
}

QVariant ItemListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || (role != Qt::DisplayRole && role != Qt::AccessibleTextRole)) {
        return {};
    }
    switch (section) {
        case checkColumn:
            return role == Qt::AccessibleTextRole ? tr("Selected") : QString();
        case iconColumn:
            return role == Qt::AccessibleTextRole ? tr("Icon") : QString();
        case nameColumn:
            return tr("Name");
        case countColumn:
            return tr("Count");
        default:
            return tr("Size");
    }
}

Qt::ItemFlags ItemListModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    const Qt::ItemFlags shown = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    return index.column() == checkColumn && enabled_ ? shown | Qt::ItemIsUserCheckable : shown;
}

}  // namespace brimvault::ui
