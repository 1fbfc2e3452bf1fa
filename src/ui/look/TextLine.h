#pragma once

#include <QFont>
#include <QPainter>
#include <QRect>
#include <QString>

namespace brimvault::ui {

/// Draws one line of text, cut where it does not fit. The side is the eye's own (AlignLeft is left, in every layout);
/// the text runs in its own direction, so that "14 B" reads so in a window that is laid out from right to left.
inline void drawTextLine(QPainter& painter, const QRect& place, Qt::Alignment side, const QFont& font,
                         const QString& text, Qt::TextElideMode cut = Qt::ElideRight) {
    painter.setFont(font);
    painter.setLayoutDirection(text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    const QString shown = QFontMetrics(font).elidedText(text, cut, place.width());
    painter.drawText(place, static_cast<int>(side | Qt::AlignAbsolute | Qt::AlignVCenter) | Qt::TextSingleLine, shown);
}

/// The side where text begins, and where it ends, in a layout of that direction.
[[nodiscard]] inline Qt::Alignment leadingSide(Qt::LayoutDirection direction) {
    return direction == Qt::RightToLeft ? Qt::AlignRight : Qt::AlignLeft;
}
[[nodiscard]] inline Qt::Alignment trailingSide(Qt::LayoutDirection direction) {
    return direction == Qt::RightToLeft ? Qt::AlignLeft : Qt::AlignRight;
}

}  // namespace brimvault::ui
