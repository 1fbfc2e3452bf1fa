#pragma once

#include <QListView>

#include "ui/table/CheckPress.h"

namespace brimvault::ui {

/// The list of sections on the left: one card to a row, with a check box, an icon, a title and a subtitle. A click in a
/// check box ticks it and leaves the selection as it is; the space bar ticks the current row. Main thread.
class SectionsTableView final : public QListView {
    Q_OBJECT

public:
    explicit SectionsTableView(QWidget* parent = nullptr);

    /// From the edge of a row's card to its texts; what is before them belongs to the check box.
    static constexpr int textLeft = 41;
    /// Where a row's check box reacts, in the view's coordinates.
    [[nodiscard]] QRect checkRect(const QModelIndex& index) const;
    /// The row whose check box is held down; invalid for none.
    [[nodiscard]] QModelIndex pressedCheck() const { return press_.check(); }

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override { mousePressEvent(event); }
    void keyPressEvent(QKeyEvent* event) override;

private:
    CheckPress press_{this};
};

}  // namespace brimvault::ui
