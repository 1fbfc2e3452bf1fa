#include "ui/list/ItemListModel.h"

#include <QHash>
#include <QTextDocument>
#include <utility>

#include "engine/model/FileSize.h"

namespace brimvault::ui {

namespace {

SortKey keyOf(int column) {
    switch (column) {
        case ItemListModel::checkColumn:
            return SortKey::checked;
        case ItemListModel::sizeColumn:
            return SortKey::size;
        case ItemListModel::countColumn:
            return SortKey::count;
        default:
            return SortKey::name;
    }
}

}  // namespace

ItemListModel::ItemListModel(Texts texts, QObject* parent)
    : QAbstractTableModel(parent), texts_(std::move(texts)), rows_(*this, texts_.count) {}

int ItemListModel::setItems(const QList<Item>& items, int row) {
    const int place = rows_.keepOnly(items, row);
    if (texts_.valuesChange && rows_.refreshValues()) {
        Q_EMIT dataChanged(index(0, nameColumn), index(rowCount() - 1, columnCount() - 1),
                           {Qt::DisplayRole, freesRole});
    }
    rows_.append(items);
    return place;
}

void ItemListModel::setAllChecked(bool checked) {
    rows_.forEachItem([checked](engine::CleanableItem& item) {
        if (!checked || !item.ppbDeletable()) {
            item.setPpbChecked(false);
        } else if (!item.isTickedByHandOnly()) {
            item.setPpbChecked(true);
        }
    });
    checksChanged(0, rowCount() - 1);
}

void ItemListModel::sort(int column, Qt::SortOrder order) {
    if (column != iconColumn) {
        sortColumn_ = column;
        sortOrder_ = order;
        rows_.sort(keyOf(column), order);
    }
}

void ItemListModel::willReorder() { Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint); }

// The persistent indexes are few: rows that are selected, current, or held by an assistive client.
void ItemListModel::didReorder(const std::function<int(int before)>& placeNow) {
    const QModelIndexList before = persistentIndexList();
    QHash<int, int> places;  // looking one up takes time in proportion to the length of the list
    QModelIndexList after;
    for (const QModelIndex& index : before) {
        auto place = places.find(index.row());
        if (place == places.end()) {
            place = places.insert(index.row(), placeNow(index.row()));
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

void ItemListModel::freesChanged() {
    if (rows_.size() > 0) {
        Q_EMIT dataChanged(index(0, nameColumn), index(rowCount() - 1, columnCount() - 1), {freesRole});
    }
}

void ItemListModel::setEnabled(bool enabled) {
    enabled_ = enabled;
    if (rows_.size() > 0) {
        Q_EMIT dataChanged(index(0, checkColumn),
                           index(rowCount() - 1, checkColumn));  // drawn anew; the states are the same
    }
}

int ItemListModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : rows_.size(); }

int ItemListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : texts_.count ? countColumn + 1 : sizeColumn + 1;
}

QVariant ItemListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    const auto& shown = *item(index.row());
    if (role == Qt::ToolTipRole) {
        const QString text = tooltipOf(shown);  // a name may look like markup, and is shown as it is
        return text.isEmpty() ? QVariant() : Qt::convertFromPlainText(text, Qt::WhiteSpaceNoWrap);
    }
    if (role == keptRole) {
        return !shown.ppbDeletable();
    }
    switch (index.column()) {
        case checkColumn:
            return checkData(shown, role);
        case iconColumn:
            return role == iconRole ? QVariant::fromValue(texts_.icon(shown)) : QVariant();
        case nameColumn:
            return nameData(shown, role);
        case countColumn:
            return role == Qt::DisplayRole ? QString::number(texts_.count(shown)) : QVariant();
        default:
            return role == Qt::DisplayRole ? engine::FileSize::formatMemoryStringDot1(shown.ppnSize()) : QVariant();
    }
}

QVariant ItemListModel::nameData(const engine::CleanableItem& item, int role) const {
    switch (role) {
        case Qt::DisplayRole:
            return texts_.name(item);
        case noteRole:
            return noteOf(item);
        case freesRole:
            return freesOf(item);
        case Qt::AccessibleDescriptionRole: {
            QStringList parts{noteOf(item), freesOf(item)};
            parts.removeAll(QString());
            return parts.join(QStringLiteral(". "));
        }
        default:
            return {};
    }
}

QString ItemListModel::freesOf(const engine::CleanableItem& item) {
    return item.isFreesWorthTelling() ? tr("frees %1").arg(engine::FileSize::formatMemoryStringDot1(item.frees()))
                                      : QString();
}

QString ItemListModel::tooltipOf(const engine::CleanableItem& item) const {
    QStringList lines{texts_.tooltip(item), noteOf(item)};
    if (item.isFreesWorthTelling()) {
        lines.append(tr("Removing it frees %1. Snapshots of the file system may still hold that space.")
                         .arg(engine::FileSize::formatMemoryStringDot1(item.frees())));
    }
    lines.removeAll(QString());
    return lines.join(QLatin1Char('\n'));
}

QVariant ItemListModel::checkData(const engine::CleanableItem& item, int role) const {
    if (role == Qt::CheckStateRole) {
        return item.ppbChecked() ? Qt::Checked : Qt::Unchecked;
    }
    return role == Qt::AccessibleTextRole ? texts_.name(item) : QVariant();
}

bool ItemListModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    const bool isCheck = index.isValid() && index.column() == checkColumn && role == Qt::CheckStateRole && enabled_;
    if (!isCheck || !item(index.row())->ppbDeletable()) {
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
    const bool isCheckable = index.column() == checkColumn && enabled_ && item(index.row())->ppbDeletable();
    return isCheckable ? shown | Qt::ItemIsUserCheckable : shown;
}

}  // namespace brimvault::ui
