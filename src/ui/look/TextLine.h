#pragma once

#include <QFont>
#include <QPainter>
#include <QRect>
#include <QString>
#include <QtMath>

namespace brimvault::ui {

/// Draws one line of text, elided where it does not fit. The side is absolute (AlignLeft is left in every layout); the
/// text runs in its own direction, so that "14 B" stays "14 B" in a right-to-left window.
inline void drawTextLine(QPainter& painter, const QRect& place, Qt::Alignment side, const QFont& font,
                         const QString& text, Qt::TextElideMode mode = Qt::ElideRight) {
    painter.setFont(font);
    painter.setLayoutDirection(text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    const QString shown = QFontMetrics(font).elidedText(text, mode, place.width());
    painter.drawText(place, static_cast<int>(side | Qt::AlignAbsolute | Qt::AlignVCenter) | Qt::TextSingleLine, shown);
}

/// Whether a line of text is too long for the room.
[[nodiscard]] inline bool isElided(const QString& text, const QFont& font, int room) {
    return QFontMetrics(font).elidedText(text, Qt::ElideRight, room) != text;
}

/// The room that a line of text needs not to be elided: its advance is no whole number.
[[nodiscard]] inline int lineWidth(const QString& text, const QFont& font) {
    return qCeil(QFontMetricsF(font).horizontalAdvance(text));
}

/// The sides where text begins and ends in a layout of that direction.
[[nodiscard]] inline Qt::Alignment leadingSide(Qt::LayoutDirection direction) {
    return direction == Qt::RightToLeft ? Qt::AlignRight : Qt::AlignLeft;
}
[[nodiscard]] inline Qt::Alignment trailingSide(Qt::LayoutDirection direction) {
    return direction == Qt::RightToLeft ? Qt::AlignLeft : Qt::AlignRight;
}

}  // namespace brimvault::ui
