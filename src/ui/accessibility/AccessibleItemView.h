#pragma once

#include <QHash>
#include <QObject>
#include <QSet>

#include "ui/accessibility/AccessiblePlace.h"
#include "ui/controls/Announcer.h"

namespace brimvault::ui {

/// The accessible interface of the window's lists. Qt's own one for tables can neither toggle a check box nor cope with
/// rows that move. Here a cell stands for a place (row and column) and answers for the item that is there now. Changes
/// of the view's model are announced: check boxes of visible rows, descriptions of a plain list, the sort order of a
/// table.
///
/// Children are numbered as in the events of Qt's views: row by row; a table has its column headers before the first
/// row and a row header before each row. Main thread.
class AccessibleItemView final : public AccessibleList {
public:
    /// Installs the factory of these interfaces, and of those in `ui/controls/AccessibleControls`. Once, before the
    /// first window.
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

    mutable QHash<int, QAccessible::Id> children_;  ///< made when a client asks for them
    QSet<int> changedDescriptions_;                 ///< rows whose changed description is not announced yet
    Announcer descriptionNews_;
    const QAbstractItemModel* followed_ = nullptr;  ///< compared, never dereferenced
    QObject connections_;                           ///< the receiver of all connections, which end with it
};

}  // namespace brimvault::ui
