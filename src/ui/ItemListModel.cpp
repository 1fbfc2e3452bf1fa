#include "ui/ItemListModel.h"

#include <QLocale>
#include <QTextDocument>
#include <algorithm>
#include <numeric>

#include "engine/FileSize.h"

namespace brimvault::ui {

namespace {

// The order of names that the user's language has; digits by value. The plain "C" locale has none and compares bytes.
QCollator naturalOrder() {
    const QLocale system = QLocale::system();
    QCollator collator(system.language() == QLocale::C ? QLocale(QLocale::English) : system);
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    return collator;
}

template <typename Value>
int compare(const Value& left, const Value& right) {
    return left < right ? -1 : right < left ? 1 : 0;
}

}  // namespace

ItemListModel::ItemListModel(Texts texts, QObject* parent)
    : QAbstractTableModel(parent), texts_(std::move(texts)), collator_(naturalOrder()) {}

// While a scan goes on the list is given again and again, with a little more at its end each time; what stands there
// already is not looked at anew.
void ItemListModel::setItems(const QList<Item>& items) {
    const bool grown = items.size() >= shown_.size() && std::equal(shown_.begin(), shown_.end(), items.begin());
    const QList<Item> added = grown ? items.mid(shown_.size()) : items;
    shown_ = items;
    if (!grown) {
        dropRowsNotIn(items);
    }
    const bool otherValues = texts_.valuesChange && updateValues();
    const std::size_t before = rows_.size();
    if (!added.isEmpty()) {
        appendNewRows(added);
    }
    // A change of a mark may have moved a row of a list that is sorted by marks, and one of a value any row.
    sortRows(sortColumn_ == checkColumn || otherValues ? 0 : before);
    if (otherValues) {
        Q_EMIT dataChanged(index(0, sizeColumn), index(rowCount() - 1, columnCount() - 1), {Qt::DisplayRole});
    }
}

bool ItemListModel::updateValues() {
    bool changed = false;
    for (auto& row : rows_) {
        const quint64 size = row.item->ppnSize();
        const quint64 count = countOf(*row.item);
        changed = changed || size != row.size || count != row.count;
        row.size = size;
        row.count = count;
    }
    return changed;
}

// Rows to go are moved to the end and dropped there at once: one change for the views, however they lay scattered.
void ItemListModel::dropRowsNotIn(const QList<Item>& items) {
    const QSet<Item> wanted(items.cbegin(), items.cend());
    std::vector<int> order(rows_.size());
    std::iota(order.begin(), order.end(), 0);
    const auto firstGone = std::stable_partition(order.begin(), order.end(), [&](int row) {
        return wanted.contains(rows_[static_cast<std::size_t>(row)].item);
    });
    if (firstGone == order.end()) {
        return;
    }
    permute(order);
    const auto kept = static_cast<int>(firstGone - order.begin());
    for (auto row = rows_.begin() + kept; row != rows_.end(); ++row) {
        known_.remove(row->item.get());
    }
    beginRemoveRows({}, kept, static_cast<int>(rows_.size()) - 1);
    rows_.erase(rows_.begin() + kept, rows_.end());
    endRemoveRows();
}

void ItemListModel::appendNewRows(const QList<Item>& items) {
    std::vector<Row> added;
    for (const auto& item : items) {
        if (!known_.contains(item.get())) {
            known_.insert(item.get());
            added.push_back(makeRow(item));
        }
    }
    if (added.empty()) {
        return;
    }
    const auto first = static_cast<int>(rows_.size());
    beginInsertRows({}, first, first + static_cast<int>(added.size()) - 1);
    std::move(added.begin(), added.end(), std::back_inserter(rows_));
    endInsertRows();
}

ItemListModel::Row ItemListModel::makeRow(const Item& item) const {
    return {item, collator_.sortKey(item->ppdisplayKeyName()), collator_.sortKey(item->ppdisplayName()),
            item->ppnSize(), countOf(*item)};
}

QList<ItemListModel::Item> ItemListModel::items() const {
    QList<Item> shown;
    shown.reserve(static_cast<qsizetype>(rows_.size()));
    for (const auto& row : rows_) {
        shown.append(row.item);
    }
    return shown;
}

int ItemListModel::rowOf(const engine::CleanableItem* item) const {
    const auto found = std::find_if(rows_.begin(), rows_.end(), [&](const Row& row) { return row.item.get() == item; });
    return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

void ItemListModel::sort(int column, Qt::SortOrder order) {
    if (column == iconColumn) {
        return;
    }
    sortColumn_ = column;
    sortOrder_ = order;
    sortRows(0);
}

bool ItemListModel::isBefore(const Row& left, const Row& right) const {
    int result = 0;
    if (sortColumn_ == checkColumn) {
        result = compare(left.item->ppbChecked(), right.item->ppbChecked());
    } else if (sortColumn_ == sizeColumn) {
        result = compare(left.size, right.size);
    } else if (sortColumn_ == countColumn) {
        result = compare(left.count, right.count);
    } else {
        result = left.nameKey.compare(right.nameKey);
    }
    if (result != 0) {
        return sortOrder_ == Qt::AscendingOrder ? result < 0 : result > 0;
    }
    return left.fullNameKey.compare(right.fullNameKey) < 0;  // equals stand in the order of their whole names
}

void ItemListModel::sortRows(std::size_t alreadySorted) {
    if (alreadySorted == rows_.size()) {
        return;
    }
    std::vector<int> order(rows_.size());
    std::iota(order.begin(), order.end(), 0);
    const auto before = [this](int left, int right) {
        return isBefore(rows_[static_cast<std::size_t>(left)], rows_[static_cast<std::size_t>(right)]);
    };
    const auto tail = order.begin() + static_cast<std::ptrdiff_t>(alreadySorted);
    std::stable_sort(tail, order.end(), before);
    std::inplace_merge(order.begin(), tail, order.end(), before);
    permute(order);
}

void ItemListModel::permute(const std::vector<int>& order) {
    if (std::is_sorted(order.begin(), order.end())) {
        return;
    }
    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    std::vector<int> newRow(order.size());
    std::vector<Row> rows;
    rows.reserve(rows_.size());
    for (std::size_t place = 0; place < order.size(); ++place) {
        const auto before = static_cast<std::size_t>(order[place]);
        newRow[before] = static_cast<int>(place);
        rows.push_back(std::move(rows_[before]));
    }
    rows_ = std::move(rows);
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    for (const QModelIndex& index : before) {
        after.append(this->index(newRow[static_cast<std::size_t>(index.row())], index.column()));
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
