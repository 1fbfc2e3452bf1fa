#include "ui/list/HTableHeaderView.h"

#include <QMouseEvent>
#include <QPainter>

#include "ui/list/ItemListModel.h"
#include "ui/look/Look.h"
#include "ui/look/TextLine.h"

namespace brimvault::ui {

namespace {

constexpr qreal textSize = 11.5;

}  // namespace

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
    cell.bReverceSort = number;  // the largest first is the usual order of numbers
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
