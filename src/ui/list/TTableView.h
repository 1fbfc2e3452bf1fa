#pragma once

#include <QHash>

#include "ui/table/CheckTableView.h"

class QAction;

namespace brimvault::ui {

/// The table of an item list: below a header that sorts it, striped rows with a menu of what can be done to each. What
/// a click in the header does, Ctrl with a digit does too: 1 for the first column that sorts, and so on. Main thread.
class TTableView final : public CheckTableView {
    Q_OBJECT

public:
    explicit TTableView(QWidget* parent = nullptr);

    /// An ItemListModel.
    void setModel(QAbstractItemModel* model) override;
    /// Sorts by the column, the other way round when it is sorted by it already; null for the icons. They are also this
    /// widget's `actions`, as the columns stand.
    [[nodiscard]] QAction* sortAction(int column) const { return sortActions_.value(column); }

Q_SIGNALS:
    /// The user asks, with the mouse or the keyboard, for what can be done to the selected row.
    void menuRequested(const QPoint& globalPosition);
    /// The user pressed the delete key.
    void removeRequested();

public Q_SLOTS:
    /// Selects the current row and asks for its menu, beside the row.
    void requestMenuOfCurrentRow();

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void addSortActions();
    void showSorting();
    void selectCurrentRow();
    /// Assistive clients remember what stood in a place; after a sort they are to ask anew.
    void tellRowsReordered();

    QHash<int, QAction*> sortActions_;  ///< by column
};

}  // namespace brimvault::ui
