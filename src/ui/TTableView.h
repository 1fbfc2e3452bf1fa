#pragma once

#include "ui/CheckTableView.h"

namespace brimvault::ui {

/// The table of an item list: below a header that sorts it, striped rows with a menu of what can be done to each. Main
/// thread.
class TTableView final : public CheckTableView {
    Q_OBJECT

public:
    explicit TTableView(QWidget* parent = nullptr);

    /// An ItemListModel.
    void setModel(QAbstractItemModel* model) override;

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
    void selectCurrentRow();
    /// Assistive clients remember what stood in a place; after a sort they are to ask anew.
    void tellRowsReordered();
};

}  // namespace brimvault::ui
