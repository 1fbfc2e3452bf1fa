#pragma once

#include <QTableView>

#include "ui/table/CheckPress.h"

namespace brimvault::ui {

/// A table of rows that can be ticked: a check box in the first column that a click or the space bar ticks, a picture,
/// the text, and always a current row while there is any. Home and End go to the first and the last row. Main thread.
class CheckTableView : public QTableView {
    Q_OBJECT

public:
    enum Column { checkColumn, iconColumn, textColumn };

    explicit CheckTableView(QWidget* parent = nullptr);

    void setModel(QAbstractItemModel* model) override;
    /// The cell whose check box is held down; invalid for none.
    [[nodiscard]] QModelIndex pressedCheck() const { return press_.check(); }
    /// Whether a click in a check box selects its row as well; it does unless told otherwise.
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
    /// Some assistive bridges crash on a table without a current cell.
    void keepCurrentRow();

    CheckPress press_{this};
    bool checkSelects_ = true;
};

}  // namespace brimvault::ui
