#pragma once

#include <QTableView>

#include "ui/table/CheckPress.h"

namespace brimvault::ui {

/// A table of rows with a check box, a picture and text. A click or the space bar toggles the check box; Home and End
/// go to the first and the last row; there is always a current row unless the table is empty. Main thread.
class CheckTableView : public QTableView {
    Q_OBJECT

public:
    enum Column { checkColumn, iconColumn, textColumn };

    explicit CheckTableView(QWidget* parent = nullptr);

    void setModel(QAbstractItemModel* model) override;
    /// The cell whose check box is pressed; invalid for none.
    [[nodiscard]] QModelIndex pressedCheck() const { return press_.check(); }
    /// Whether a click in a check box also selects its row; true by default.
    void setCheckSelects(bool selects) { checkSelects_ = selects; }

protected:
    void focusInEvent(QFocusEvent* event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override { mousePressEvent(event); }
    void keyPressEvent(QKeyEvent* event) override;

    void fixWidth(int column, int width);

private:
    /// Some assistive technologies crash on a table without a current cell.
    void keepCurrentRow();

    CheckPress press_{this};
    bool checkSelects_ = true;
};

}  // namespace brimvault::ui
