#include "ui/controls/MCheckCell.h"

#include <QStyle>

#include "ui/look/ImageLoad.h"
#include "ui/look/Look.h"
#include "ui/look/TextLine.h"

namespace brimvault::ui {

namespace {

constexpr qreal disabledOpacity = 0.45;
constexpr qreal cornerRadius = 4.5;
constexpr int defaultSide = 18;
constexpr int titleGap = 8;

}  // namespace

int MCheckCell::side() { return look::scaled(defaultSide); }

QLatin1String MCheckCell::picture() const {
    const bool pressed = highlighted && enabled;
    const bool selected = ground == CheckGround::selected;
    switch (state) {
        case Qt::PartiallyChecked:
            return QLatin1String(pressed ? "rcheck1Sel" : selected ? "rcheck1Inv" : "rcheck1");
        case Qt::Checked:
            return QLatin1String(pressed ? "rcheck2Sel" : selected ? "rcheck2Inv" : "rcheck2");
        case Qt::Unchecked:
            break;
    }
    return QLatin1String(pressed ? "rcheck0Sel" : selected ? "rcheck0Inv" : "rcheck0");
}

void MCheckCell::draw(QPainter& painter, const QPoint& topLeft) const {
    painter.save();
    painter.setOpacity(enabled ? 1.0 : disabledOpacity);
    ImageLoad::draw(painter, topLeft, picture());
    if (hovered && enabled && !highlighted && ground == CheckGround::plain) {
        constexpr qreal edge = 0.5;
        const QRectF box(topLeft.x() + edge, topLeft.y() + edge, side() - 2, side() - 2);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(QColor(look::accentDark), 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(box, cornerRadius, cornerRadius);
    }
    painter.restore();
}

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
