#pragma once

#include <QHeaderView>

namespace brimvault::ui {

/// The header of an item list: titles, and an arrow at the column by which the rows are sorted. Main thread.
class HTableHeaderView final : public QHeaderView {
    Q_OBJECT

public:
    explicit HTableHeaderView(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;
};

}  // namespace brimvault::ui
