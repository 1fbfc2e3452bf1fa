#include "ui/controls/MCheckCellT.h"

#include <QStyle>

#include "ui/look/ImageLoad.h"
#include "ui/look/Look.h"
#include "ui/look/TextLine.h"

namespace brimvault::ui {

namespace {

constexpr int titleGap = 8;

}  // namespace

int MCheckCellT::widthBesideTitle() { return 2 * margin + side() + titleGap; }

QRect MCheckCellT::imageRect(const QRect& cell) const {
    const QRect place(cell.left() + margin, cell.top() + (cell.height() - side()) / 2, side(), side());
    return QStyle::visualRect(direction, cell, place);
}

QRect MCheckCellT::titleRect(const QRect& cell) const {
    return QStyle::visualRect(direction, cell, cell.adjusted(margin + side() + titleGap, 0, -margin, 0));
}

void MCheckCellT::draw(QPainter& painter, const QRect& cell, const QFont& font) const {
    ImageLoad::drawStretched(painter, bezelRect(cell), bezel);
    MCheckCell::draw(painter, imageRect(cell).topLeft());
    painter.setPen(QColor(!enabled ? look::textDisabled : hovered ? look::textPrimary : look::textControl));
    drawTextLine(painter, titleRect(cell), leadingSide(direction), font, title);
}

}  // namespace brimvault::ui
