#include "ui/list/HTableHeaderView.h"

#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QtMath>

#include "ui/list/ItemListModel.h"
#include "ui/look/ImageLoad.h"
#include "ui/look/Look.h"
#include "ui/look/TextLine.h"

namespace brimvault::ui {

namespace {

constexpr int margin = 10;
constexpr int arrowGap = 6;
constexpr qreal textSize = 11.5;

}  // namespace

QLatin1String HTableHeaderCell::arrow() const {
    return QLatin1String((order == Qt::AscendingOrder) != bReverceSort ? "sortTrAsc" : "sortTrDesc");
}

// The first and the last cell have a picture for their outer end; the middle part is stretched.
void HTableHeaderCell::drawGround(QPainter& painter, const QRect& cell, Qt::LayoutDirection direction) const {
    using Name = QLatin1String;
    const bool lit = isHighlighted();
    const int end = qRound(ImageLoad::sizeOf(Name("table_top_left")).width());
    const bool leftEnd = direction == Qt::RightToLeft ? last : first;
    const bool rightEnd = direction == Qt::RightToLeft ? first : last;
    const QRect middle = cell.adjusted(leftEnd ? end : 0, 0, rightEnd ? -end : 0, 0);
    ImageLoad::drawFilled(painter, middle, Name(lit ? "table_top_select_mid" : "table_top_mid"));
    if (leftEnd) {
        ImageLoad::drawFilled(painter, {cell.left(), cell.top(), end, cell.height()},
                              Name(lit ? "table_top_select_left" : "table_top_left"));
    }
    if (rightEnd) {
        ImageLoad::drawFilled(painter, {cell.right() + 1 - end, cell.top(), end, cell.height()},
                              Name(lit ? "table_top_select_right" : "table_top_right"));
    }
}

void HTableHeaderCell::draw(QPainter& painter, const QRect& cell, Qt::LayoutDirection direction,
                            const QFont& font) const {
    drawGround(painter, cell, direction);
    QRect text = cell.adjusted(margin, 0, -margin, 0);
    if (order) {
        const QSize size = ImageLoad::sizeOf(arrow()).toSize();
        const QRect place(text.right() + 1 - size.width(), text.center().y() - size.height() / 2 + 1, size.width(),
                          size.height());
        ImageLoad::draw(painter, QStyle::visualRect(direction, text, place).topLeft(), arrow());
        text = QStyle::visualRect(direction, text, text.adjusted(0, 0, -size.width() - arrowGap, 0));
    }
    painter.setPen(QColor(isHighlighted()            ? look::accentDark
                          : pointer == Pointer::over ? look::textPrimary
                                                     : look::textHeader));
    drawTextLine(painter, text, side, font, title);
}

int HTableHeaderCell::wholeWidth(const QFont& font) const {
    const int text = qCeil(QFontMetricsF(font).horizontalAdvance(title));
    return margin + text + arrowGap + ImageLoad::sizeOf(arrow()).toSize().width() + margin;
}

HTableHeaderView::HTableHeaderView(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
    setSectionsClickable(true);
    setHighlightSections(false);
    setFont(look::font(textSize, QFont::DemiBold));
    setMinimumSectionSize(0);
    viewport()->setAttribute(Qt::WA_Hover);
}

QSize HTableHeaderView::sizeHint() const { return {QHeaderView::sizeHint().width(), look::scaled(look::headerHeight)}; }

HTableHeaderCell::Pointer HTableHeaderView::pointerOn(int logicalIndex) const {
    using Pointer = HTableHeaderCell::Pointer;
    if (logicalIndex == ItemListModel::iconColumn) {
        return Pointer::elsewhere;  // a click there does nothing
    }
    if (pressed_ == logicalIndex) {
        return Pointer::down;
    }
    const bool over =
        viewport()->underMouse() && logicalIndexAt(viewport()->mapFromGlobal(QCursor::pos())) == logicalIndex;
    return over ? Pointer::over : Pointer::elsewhere;
}

HTableHeaderCell HTableHeaderView::cell(int logicalIndex) const {
    const bool number = ItemListModel::isNumber(logicalIndex);
    const int place = visualIndex(logicalIndex);
    HTableHeaderCell cell;
    cell.title = model()->headerData(logicalIndex, Qt::Horizontal).toString();
    cell.side = number ? trailingSide(layoutDirection()) : leadingSide(layoutDirection());
    if (logicalIndex == sortIndicatorSection()) {
        cell.order = sortIndicatorOrder();
    }
    cell.bReverceSort = number;  // the default order of numbers is the largest first
    cell.first = place == 0;
    cell.last = place == count() - 1;
    cell.pointer = pointerOn(logicalIndex);
    return cell;
}

void HTableHeaderView::paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const {
    cell(logicalIndex).draw(*painter, rect, layoutDirection(), font());
}

void HTableHeaderView::mousePressEvent(QMouseEvent* event) {
    pressed_ = event->button() == Qt::LeftButton ? logicalIndexAt(event->position().toPoint()) : -1;
    viewport()->update();
    QHeaderView::mousePressEvent(event);
}

void HTableHeaderView::mouseReleaseEvent(QMouseEvent* event) {
    pressed_ = -1;
    viewport()->update();
    QHeaderView::mouseReleaseEvent(event);
}

}  // namespace brimvault::ui
