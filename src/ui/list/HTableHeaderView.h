#pragma once

#include <QHeaderView>

#include "ui/list/HTableHeaderCell.h"

namespace brimvault::ui {

/// The header of an item list: a row of HTableHeaderCells. Main thread.
class HTableHeaderView final : public QHeaderView {
    Q_OBJECT

public:
    explicit HTableHeaderView(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    /// The header of a column as it is now.
    [[nodiscard]] HTableHeaderCell cell(int logicalIndex) const;

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;

private:
    [[nodiscard]] HTableHeaderCell::Pointer pointerOn(int logicalIndex) const;

    int pressed_ = -1;  ///< the column whose header is held down
};

}  // namespace brimvault::ui
