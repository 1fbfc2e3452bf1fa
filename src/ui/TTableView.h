#pragma once

#include <QTableView>

namespace brimvault::ui {

/// The table of an item list: striped rows, a check box in the first column that a click or the space bar ticks, and
/// always a current row while there is any. Home and End go to the first and the last row. Main thread.
class TTableView final : public QTableView {
    Q_OBJECT

public:
    explicit TTableView(QWidget* parent = nullptr);

    void setModel(QAbstractItemModel* model) override;
    /// The cell whose check box is held down; invalid for none.
    [[nodiscard]] QModelIndex pressedCheck() const { return pressedCheck_; }

Q_SIGNALS:
    /// The user asks, with the mouse or the keyboard, for what can be done to the selected row.
    void menuRequested(const QPoint& globalPosition);
    /// The user pressed the delete key.
    void removeRequested();

public Q_SLOTS:
    /// Selects the current row and asks for its menu, beside the row.
    void requestMenuOfCurrentRow();

protected:
    void focusInEvent(QFocusEvent* event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override { mousePressEvent(event); }
    void keyPressEvent(QKeyEvent* event) override;

private:
    void selectCurrentRow();
    /// Some assistive bridges crash on a table without a current cell.
    void keepCurrentRow();
    /// Assistive clients remember what stood in a place; after a sort they are to ask anew.
    void tellRowsReordered();

    QPersistentModelIndex pressedCheck_;  ///< follows its row, which may move while the button is held
};

}  // namespace brimvault::ui
