#pragma once

#include "ui/look/Look.h"
#include "ui/look/TextData.h"
#include "ui/look/TextLine.h"

namespace brimvault::ui {

/// A cell of a table with one line of text, as it is drawn. Main thread.
struct TextCellSmall {
    static constexpr qreal textSize = 13;

    /// The text stands beside that edge: a name where lines begin, a number where they end. What does not fit is cut in
    /// the middle, since names differ at either end.
    static void draw(QPainter& painter, const QRect& cell, Qt::Alignment side, const TextData& value) {
        painter.setPen(QColor(value.selected ? look::textOnAccent : look::textPrimary));
        drawTextLine(painter, cell, side, look::font(textSize), value.title, Qt::ElideMiddle);
    }
};

}  // namespace brimvault::ui
