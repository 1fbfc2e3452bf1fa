#pragma once

#include <QPainter>
#include <optional>

namespace brimvault::ui {

/// A column's header as it is drawn: a ground in three parts, the title, and the arrow of the column by which the rows
/// are sorted. Main thread.
struct HTableHeaderCell {
    enum class Pointer { elsewhere, over, down };

    QString title;
    Qt::Alignment side;                  ///< where the title stands: at the beginning of lines or at their end
    std::optional<Qt::SortOrder> order;  ///< none when the rows are sorted by another column
    bool bReverceSort = false;           ///< inverts the arrow
    bool first = false;                  ///< stands at the beginning of the header
    bool last = false;                   ///< stands at its end
    Pointer pointer = Pointer::elsewhere;

    void draw(QPainter& painter, const QRect& cell, Qt::LayoutDirection direction, const QFont& font) const;

private:
    [[nodiscard]] bool isHighlighted() const { return order.has_value() || pointer == Pointer::down; }
    void drawGround(QPainter& painter, const QRect& cell, Qt::LayoutDirection direction) const;
    [[nodiscard]] QLatin1String arrow() const;
};

}  // namespace brimvault::ui
