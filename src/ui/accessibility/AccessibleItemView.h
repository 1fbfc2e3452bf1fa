#pragma once

#include <QHash>
#include <QObject>
#include <QSet>

#include "ui/accessibility/AccessiblePlace.h"
#include "ui/controls/Announcer.h"

namespace brimvault::ui {

/// What an assistive client sees of the window's lists. Qt's own presentation of a table can neither tick a check box
/// nor follow rows that change places; this one does both. A cell is a place (row and column), and answers for whatever
/// stands there. It follows the view's model by itself: changed check boxes among the rows on show, descriptions of a
/// plain list, and the order of a table are announced as they change.
///
/// Children are numbered as Qt's views number them in their events: row by row; a table has its column headers before
/// the first row and a row header before each row. Main thread.
class AccessibleItemView final : public AccessibleList {
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
    [[nodiscard]] int columnCount() const override { return view()->model()->columnCount(); }
    [[nodiscard]] int rowCount() const override { return view()->model()->rowCount(); }
    [[nodiscard]] QList<int> selectedColumns() const override { return {}; }
    [[nodiscard]] QList<int> selectedRows() const override;
    [[nodiscard]] bool isColumnSelected(int /*column*/) const override { return false; }
    [[nodiscard]] bool isRowSelected(int row) const override;
    bool selectRow(int row) override;
    bool selectColumn(int /*column*/) override { return false; }
    bool unselectRow(int row) override;
    bool unselectColumn(int /*column*/) override { return false; }
    void modelChange(QAccessibleTableModelChangeEvent* event) override;

protected:
    ~AccessibleItemView() override;

private:
    [[nodiscard]] QAccessibleInterface* makeChild(int row, int column) const;
    void followModel();
    void announceDataChange(const QModelIndex& first, const QModelIndex& last, const QList<int>& roles);
    void announceChecks(int firstRow, int lastRow) const;
    void announceCheck(int row, int column) const;
    void announceDescriptions();
    void announceHeaders() const;

    mutable QHash<int, QAccessible::Id> children_;  ///< those that a client has asked for
    QSet<int> changedDescriptions_;                 ///< rows whose description clients are still to be told of
    Announcer descriptionNews_;
    const QAbstractItemModel* followed_ = nullptr;  ///< compared only
    QObject connections_;  ///< to the view, its model and its header; they end with this object
};

}  // namespace brimvault::ui
