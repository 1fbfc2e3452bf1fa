#pragma once

#include <QAbstractTableModel>
#include <functional>

#include "ui/list/SortedRows.h"
#include "ui/table/RowPicture.h"

namespace brimvault::ui {

/// SortedRows as a Qt model: the rows of an item list. Rows are inserted, removed and moved, never reset, so that the
/// selection and the current row of a view stay with their items. Main thread.
class ItemListModel final : public QAbstractTableModel, private RowObserver {
    Q_OBJECT

public:
    using Item = SortedRows::Item;
    /// By logical index: a view shows the count, where a list has one, before the size.
    enum Column { checkColumn, iconColumn, nameColumn, sizeColumn, countColumn };
    enum Role {
        iconRole = Qt::UserRole,  ///< an item's RowPicture
        noteRole,                 ///< of the name: why the user should look at the item first; empty for most
        freesRole,                ///< of the name: what removing it frees, where that is far from its size; else empty
        keptRole                  ///< whether it can be removed in no way
    };
    [[nodiscard]] static bool isNumber(int column) { return column == sizeColumn || column == countColumn; }

    /// What differs from list to list in how an item is shown. Main thread.
    struct Texts {
        std::function<QString(const engine::CleanableItem&)> name;
        std::function<QString(const engine::CleanableItem&)> tooltip;  ///< empty for none
        std::function<RowPicture(const engine::CleanableItem&)> icon;
        SortedRows::Count count;    ///< for the fifth column; empty if the list has four
        bool valuesChange = false;  ///< whether the size and the count of an item may change while it is listed
        std::function<QString(const engine::CleanableItem&)> note = {};  ///< empty if no item has one
    };

    explicit ItemListModel(Texts texts, QObject* parent = nullptr);

    /// Shows exactly these items, each once, with their present sizes and counts. Returns how many rows above `row`
    /// have stayed: if `row` itself was removed, the place of the one after it.
    int setItems(const QList<Item>& items, int row = 0);
    /// Adds those of the items that are not shown yet.
    void appendItems(const QList<Item>& items) { rows_.append(items); }
    /// Removes these items; answers as `setItems` does.
    int removeItems(const QList<const engine::CleanableItem*>& items, int row = 0) { return rows_.remove(items, row); }
    /// Restores the order if the rows are sorted by check marks and any item was ticked or unticked.
    void resortByMarks() { rows_.resortByMarks(); }

    [[nodiscard]] const Item& item(int row) const { return rows_.item(row); }
    [[nodiscard]] bool contains(const engine::CleanableItem* item) const { return rows_.contains(item); }
    /// -1 when the item is not shown.
    [[nodiscard]] int rowOf(const engine::CleanableItem* item) const { return rows_.rowOf(item); }
    /// Ticks or unticks everything. What cannot be removed is never ticked, and what is ticked by the user's own hand
    /// alone keeps its mark when all else is ticked.
    void setAllChecked(bool checked);

    /// Sorts by a column, now and whenever rows come; the icon column sorts nothing.
    void sort(int column, Qt::SortOrder order) override;
    [[nodiscard]] int sortColumn() const { return sortColumn_; }
    [[nodiscard]] Qt::SortOrder sortOrder() const { return sortOrder_; }
    /// Tells views that the check states of rows changed.
    void checksChanged(int firstRow, int lastRow);
    /// Tells views that items may free more or less than before.
    void freesChanged();
    /// Whether check boxes may be changed.
    void setEnabled(bool enabled);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

Q_SIGNALS:
    /// The user ticked or unticked a row; the model changes nothing by itself.
    void checkRequested(int row, bool checked);
    /// Rows changed places.
    void rowsReordered();

private:
    void willInsert(int first, int last) override { beginInsertRows({}, first, last); }
    void didInsert() override { endInsertRows(); }
    void willRemove(int first, int last) override { beginRemoveRows({}, first, last); }
    void didRemove() override { endRemoveRows(); }
    void willReorder() override;
    void didReorder(const std::function<int(int before)>& placeNow) override;

    [[nodiscard]] QString noteOf(const engine::CleanableItem& item) const {
        return texts_.note ? texts_.note(item) : QString();
    }
    [[nodiscard]] static QString freesOf(const engine::CleanableItem& item);
    [[nodiscard]] QVariant nameData(const engine::CleanableItem& item, int role) const;
    [[nodiscard]] QString tooltipOf(const engine::CleanableItem& item) const;
    [[nodiscard]] QVariant checkData(const engine::CleanableItem& item, int role) const;

    const Texts texts_;
    SortedRows rows_;
    int sortColumn_ = nameColumn;
    Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
    bool enabled_ = true;
};

}  // namespace brimvault::ui
