#pragma once

#include <QAbstractItemView>
#include <QAccessibleWidget>
#include <QHash>

#include "ui/Sheet.h"

namespace brimvault::ui {

/// What an assistive client sees of the window's lists. Qt's own presentation of a table can neither tick a check box
/// nor follow rows that change places; this one does both. A cell is a place (row and column), and answers for whatever
/// stands there.
///
/// Children are numbered as Qt's views number them in their events: row by row; a table has its column headers before
/// the first row and a row header before each row. Main thread.
class AccessibleItemView final : public QAccessibleWidget, public QAccessibleTableInterface {
public:
    /// Has the lists presented so, and sheets as dialogs. Once, before the first window.
    static void install();

    explicit AccessibleItemView(QAbstractItemView* view);
    Q_DISABLE_COPY_MOVE(AccessibleItemView)

    [[nodiscard]] QAccessible::State state() const override;
    void* interface_cast(QAccessible::InterfaceType type) override;
    [[nodiscard]] int childCount() const override;
    [[nodiscard]] QAccessibleInterface* child(int index) const override;
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override;
    [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override;
    [[nodiscard]] QAccessibleInterface* focusChild() const override;

    [[nodiscard]] QAccessibleInterface* caption() const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* summary() const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* cellAt(int row, int column) const override;
    [[nodiscard]] int selectedCellCount() const override { return selectedRowCount() * columnCount(); }
    [[nodiscard]] QList<QAccessibleInterface*> selectedCells() const override;
    [[nodiscard]] QString columnDescription(int column) const override;
    [[nodiscard]] QString rowDescription(int /*row*/) const override { return {}; }
    [[nodiscard]] int selectedColumnCount() const override { return 0; }
    [[nodiscard]] int selectedRowCount() const override { return static_cast<int>(selectedRows().size()); }
    [[nodiscard]] int columnCount() const override { return view_->model()->columnCount(); }
    [[nodiscard]] int rowCount() const override { return view_->model()->rowCount(); }
    [[nodiscard]] QList<int> selectedColumns() const override { return {}; }
    [[nodiscard]] QList<int> selectedRows() const override;
    [[nodiscard]] bool isColumnSelected(int /*column*/) const override { return false; }
    [[nodiscard]] bool isRowSelected(int row) const override;
    bool selectRow(int row) override;
    bool selectColumn(int /*column*/) override { return false; }
    bool unselectRow(int row) override;
    bool unselectColumn(int /*column*/) override { return false; }
    void modelChange(QAccessibleTableModelChangeEvent* event) override;

    [[nodiscard]] QAbstractItemView* view() const { return view_; }
    /// Nothing else is to be answered first.
    [[nodiscard]] bool isUsable() const { return view_->isEnabled() && !Sheet::covers(view_); }
    /// 1 where the view has headers, 0 for a plain list.
    [[nodiscard]] int headers() const { return headers_; }
    /// The child that stands for a place; -1 is the header's row or column.
    [[nodiscard]] int childIndex(int row, int column) const;

protected:
    ~AccessibleItemView() override;

private:
    [[nodiscard]] QAccessibleInterface* makeChild(int row, int column) const;

    QAbstractItemView* view_;
    int headers_;
    mutable QHash<int, QAccessible::Id> children_;  ///< those that a client has asked for
};

/// From now on, tells assistive clients of changed check boxes among the rows on show; they stand in the column given
/// of the view's model. Main thread.
void announceCheckChanges(QAbstractItemView* view, int column);
/// Tells assistive clients that a row of a list without columns has another description. Main thread.
void announceDescription(QAbstractItemView* view, int row);
/// Tells assistive clients that the headers of a table have other descriptions. Main thread.
void announceHeaders(QAbstractItemView* view);

}  // namespace brimvault::ui
