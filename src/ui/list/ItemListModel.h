#pragma once

#include <QAbstractTableModel>
#include <QHash>

#include <deque>
#include <functional>
#include <memory>
#include <vector>

#include "engine/model/CleanableItem.h"
#include "ui/table/RowPicture.h"

namespace brimvault::ui {

/// The rows of an item list, sorted. Rows come and go and change places as such, so that the selection and the current
/// row of a view stay with their items. What comes is merged into what is there, and the order of names is always kept,
/// so that no look at a very long list begins from the start. Main thread.
class ItemListModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    using Item = std::shared_ptr<engine::CleanableItem>;
    /// The count stands before the size where a list has one.
    enum Column { checkColumn, iconColumn, nameColumn, sizeColumn, countColumn };
    /// An item's RowPicture.
    enum Role { iconRole = Qt::UserRole };
    [[nodiscard]] static bool isNumber(int column) { return column == sizeColumn || column == countColumn; }

    /// What a list says of its items beyond what every item answers. Main thread.
    struct Texts {
        std::function<QString(const engine::CleanableItem&)> name;
        std::function<QString(const engine::CleanableItem&)> tooltip;  ///< empty for none
        std::function<RowPicture(const engine::CleanableItem&)> icon;
        std::function<quint64(const engine::CleanableItem&)> count;  ///< of its fifth column; none for four columns
        bool valuesChange = false;  ///< size and count of an item that stays may become others
    };

    explicit ItemListModel(Texts texts, QObject* parent = nullptr);
    ~ItemListModel() override;

    /// Shows exactly these items, each once, with the sizes and counts that they have now. Answers how many rows above
    /// the one given have stayed: the place of what followed it, where it has gone itself.
    int setItems(const QList<Item>& items, int row = 0);
    /// Shows these as well; those that are shown already stay as they are.
    void appendItems(const QList<Item>& items);
    /// Shows these no more; answers as `setItems` does.
    int removeItems(const QList<const engine::CleanableItem*>& items, int row = 0);
    /// Puts the rows in order where marks have changed that they are sorted by.
    void followMarks();

    [[nodiscard]] const Item& item(int row) const { return rows_[static_cast<std::size_t>(row)]->item; }
    [[nodiscard]] bool contains(const engine::CleanableItem* item) const { return known_.contains(item); }
    /// -1 when the item is not shown.
    [[nodiscard]] int rowOf(const engine::CleanableItem* item) const;
    /// Ticks or unticks everything; what cannot be removed is never ticked.
    void setAllChecked(bool checked);

    /// Sorts by a column, the icon column excepted; the rows that come later too.
    void sort(int column, Qt::SortOrder order) override;
    [[nodiscard]] int sortColumn() const { return sortColumn_; }
    [[nodiscard]] Qt::SortOrder sortOrder() const { return sortOrder_; }
    /// Tells views that the check states of rows changed.
    void checksChanged(int firstRow, int lastRow);
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
    struct Row {
        Item item;
        quint64 size;   ///< bytes, as shown
        quint32 count;  ///< as shown; 0 where none is
        int number;     ///< in the order in which rows came
        bool gone = false;
    };
    using Rows = std::vector<Row*>;

    [[nodiscard]] QVariant checkData(const engine::CleanableItem& item, int role) const;
    [[nodiscard]] quint32 countOf(const engine::CleanableItem& item) const {
        return texts_.count ? static_cast<quint32>(texts_.count(item)) : 0;
    }

    [[nodiscard]] static bool isNameBefore(const Row* left, const Row* right);
    /// What the rows are sorted by, as a number that grows from the top; not for names.
    [[nodiscard]] quint64 rankOf(const Row& row) const;
    [[nodiscard]] bool isBefore(const Row* left, const Row* right) const;
    [[nodiscard]] Rows sortedRows() const;

    /// Takes in the sizes and counts of the rows that are there; false when none has changed.
    bool updateValues();
    void removeAll();
    /// Those marked as gone; answers as `removeItems` does.
    int removeMarked(int row);
    void forget(const Rows& gone);
    /// Leaves behind what the store holds of rows that have gone.
    void renewStore();
    /// Has the views follow the rows to the places that they take there; the same rows.
    void reorder(Rows rows);

    Texts texts_;
    std::deque<Row> store_;  ///< in which rows stay where they are, in the order in which they came; some have gone
    int nextNumber_ = 0;
    Rows rows_;    ///< as shown, from the top
    Rows byName_;  ///< the same, in the order of names
    QHash<const engine::CleanableItem*, Row*> known_;
    int sortColumn_ = nameColumn;
    Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
    quint64 marksSorted_ = 0;  ///< the revision of the marks by which the rows are in order
    bool enabled_ = true;
};

}  // namespace brimvault::ui
