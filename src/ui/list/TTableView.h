#pragma once

#include <QHash>

#include "ui/table/CheckTableView.h"

class QAction;

namespace brimvault::ui {

/// The table of an item list, with a context menu for each row. A click on a column header sorts, and so do the
/// shortcuts Ctrl+1 for the first sortable column, Ctrl+2 for the next, and so on. Main thread.
class TTableView final : public CheckTableView {
    Q_OBJECT

public:
    explicit TTableView(QWidget* parent = nullptr);

    /// An ItemListModel.
    void setModel(QAbstractItemModel* model) override;
    /// Does what a click on the column's header does; null for the icon column. The widget's `actions` are the same
    /// ones, in the order of the columns.
    [[nodiscard]] QAction* sortAction(int column) const { return sortActions_.value(column); }

Q_SIGNALS:
    /// The user asks for the context menu of the selected row.
    void menuRequested(const QPoint& globalPosition);
    /// The user pressed the delete key.
    void removeRequested();
    /// The same with Ctrl.
    void trashRequested();

public Q_SLOTS:
    /// Selects the current row and requests its menu beside it.
    void requestMenuOfCurrentRow();

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void addSortActions();
    void showSorting();
    void selectCurrentRow();
    /// Assistive clients cache cells by their place; a reset makes them read the rows again.
    void announceReorder();

    QHash<int, QAction*> sortActions_;  ///< by column
};

}  // namespace brimvault::ui
