#pragma once

#include <QHeaderView>
#include <optional>

namespace brimvault::ui {

/// A column's header as it is drawn: a background in three parts, the title, and an arrow if the rows are sorted by the
/// column. Main thread.
struct HTableHeaderCell {
    enum class Pointer { elsewhere, over, down };

    QString title;
    Qt::Alignment side;                  ///< the alignment of the title
    std::optional<Qt::SortOrder> order;  ///< none when the rows are sorted by another column
    bool bReverceSort = false;           ///< inverts the arrow
    bool first = false;                  ///< is the leading one of the header
    bool last = false;                   ///< is the trailing one
    Pointer pointer = Pointer::elsewhere;

    void draw(QPainter& painter, const QRect& cell, Qt::LayoutDirection direction, const QFont& font) const;
    /// The least width in which the title is whole beside an arrow.
    [[nodiscard]] int wholeWidth(const QFont& font) const;

private:
    [[nodiscard]] bool isHighlighted() const { return order.has_value() || pointer == Pointer::down; }
    void drawGround(QPainter& painter, const QRect& cell, Qt::LayoutDirection direction) const;
    [[nodiscard]] QLatin1String arrow() const;
};

/// The header of an item list: a row of HTableHeaderCells. Main thread.
class HTableHeaderView final : public QHeaderView {
    Q_OBJECT

public:
    explicit HTableHeaderView(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    /// The present state of the header of a column.
    [[nodiscard]] HTableHeaderCell cell(int logicalIndex) const;

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;

private:
    [[nodiscard]] HTableHeaderCell::Pointer pointerOn(int logicalIndex) const;

    int pressed_ = -1;  ///< the column whose header is pressed; -1 for none
};

}  // namespace brimvault::ui
