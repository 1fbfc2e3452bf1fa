#pragma once

#include <QAbstractTableModel>
#include <QCollator>
#include <QSet>
#include <functional>
#include <memory>
#include <vector>

#include "engine/CleanableItem.h"
#include "ui/RowPicture.h"

namespace brimvault::ui {

/// The rows of an item list, sorted. Rows come and go and change places as such, so that the selection and the current
/// row of a view stay with their items. Main thread.
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

    /// Shows exactly these items, each once, with the sizes and counts that they have now.
    void setItems(const QList<Item>& items);
    [[nodiscard]] const Item& item(int row) const { return rows_[static_cast<std::size_t>(row)].item; }
    /// The items as shown, from the top.
    [[nodiscard]] QList<Item> items() const;
    /// -1 when the item is not shown.
    [[nodiscard]] int rowOf(const engine::CleanableItem* item) const;

    /// Sorts by a column, the icon column excepted; the rows of later `setItems` too.
    void sort(int column, Qt::SortOrder order) override;
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
        QCollatorSortKey nameKey;
        QCollatorSortKey fullNameKey;
        quint64 size;   ///< bytes, as shown
        quint64 count;  ///< as shown; 0 where none is
    };

    [[nodiscard]] Row makeRow(const Item& item) const;
    [[nodiscard]] bool isBefore(const Row& left, const Row& right) const;
    [[nodiscard]] QVariant checkData(const engine::CleanableItem& item, int role) const;
    [[nodiscard]] quint64 countOf(const engine::CleanableItem& item) const {
        return texts_.count ? texts_.count(item) : 0;
    }
    /// Takes in the sizes and counts of the rows that are there; false when none has changed.
    bool updateValues();
    void dropRowsNotIn(const QList<Item>& items);
    void appendNewRows(const QList<Item>& items);
    /// Sorts what stands behind the rows that are sorted already, and merges the two.
    void sortRows(std::size_t alreadySorted);
    /// Puts the row that is at `order[n]` to place n.
    void permute(const std::vector<int>& order);

    Texts texts_;
    QCollator collator_;
    std::vector<Row> rows_;
    QSet<const engine::CleanableItem*> known_;  ///< the items of the rows
    QList<Item> shown_;                         ///< as last given
    int sortColumn_ = nameColumn;
    Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
    bool enabled_ = true;
};

}  // namespace brimvault::ui
