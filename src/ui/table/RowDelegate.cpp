#include "ui/table/RowDelegate.h"

#include <QHeaderView>
#include <QPainter>

#include "ui/look/FocusRing.h"
#include "ui/look/ImageLoad.h"
#include "ui/look/Look.h"
#include "ui/look/PlainToolTip.h"
#include "ui/look/TextLine.h"

namespace brimvault::ui {

void TextCellSmall::draw(QPainter& painter, const QRect& cell, Qt::Alignment side, const TextData& value) {
    painter.setPen(QColor(value.selected ? look::textOnAccent : value.muted ? look::textDisabled : look::textPrimary));
    drawTextLine(painter, cell, side, look::font(textSize), value.title, Qt::ElideMiddle);
}

void RowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    painter->save();
    if (isSelected(option)) {
        ImageLoad::drawFilled(*painter, option.rect, QLatin1String("table_row_select"));
    } else {
        drawGround(*painter, option.rect, index.row());
    }
    switch (index.column()) {
        case CheckTableView::checkColumn:
            drawCheck(*painter, option, index);
            break;
        case CheckTableView::iconColumn:
            drawIcon(*painter, option, index);
            break;
        default:
            drawText(*painter, option, index);
    }
    drawFocus(*painter, option, index);
    painter->restore();
}

QRect RowDelegate::placed(const QStyleOptionViewItem& option, const QModelIndex& index, const QSize& size) const {
    const QRect place(option.rect.left() + margin(index.column()),
                      option.rect.top() + (option.rect.height() - size.height()) / 2, size.width(), size.height());
    return QStyle::visualRect(option.direction, option.rect, place);
}

void RowDelegate::drawCheck(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const MCheckCell check = checkCell(option, index, view_->pressedCheck());
    check.draw(painter, placed(option, index, {MCheckCell::side(), MCheckCell::side()}).topLeft());
}

QRect RowDelegate::textRoom(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const int space = margin(index.column());
    return option.rect.adjusted(space, 0, -space, 0);
}

void RowDelegate::drawText(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const auto side = isNumber(index.column()) ? trailingSide(option.direction) : leadingSide(option.direction);
    TextCellSmall::draw(painter, textRoom(option, index), side,
                        {index.data().toString(), {}, isSelected(option), isMuted(index)});
}

bool RowDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                            const QModelIndex& index) {
    const QString text = index.data().toString();
    const bool elided = isElided(text, look::font(TextCellSmall::textSize), textRoom(option, index).width());
    if (event->type() != QEvent::ToolTip || !index.isValid() || !elided || index.data(Qt::ToolTipRole).isValid()) {
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    }
    showPlainToolTip(*event, text, view);
    return true;
}

// Frames the whole row: each cell draws the lines above and below, the first and the last one its end.
void RowDelegate::drawFocus(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    if (!isFocusShown(view_) || view_->currentIndex().row() != index.row()) {
        return;
    }
    painter.setPen(QPen(QColor(isSelected(option) ? look::textOnAccent : look::accentDark), 1));
    const QRect frame = option.rect.adjusted(0, 1, 0, -2);
    painter.drawLine(frame.topLeft(), frame.topRight());
    painter.drawLine(frame.bottomLeft(), frame.bottomRight());
    const int place = view_->horizontalHeader()->visualIndex(index.column());
    const bool first = place == 0;
    const bool last = place == view_->model()->columnCount() - 1;
    const bool leftEnd = option.direction == Qt::RightToLeft ? last : first;
    const bool rightEnd = option.direction == Qt::RightToLeft ? first : last;
    if (leftEnd) {
        painter.drawLine(frame.left() + 1, frame.top(), frame.left() + 1, frame.bottom());
    }
    if (rightEnd) {
        painter.drawLine(frame.right() - 1, frame.top(), frame.right() - 1, frame.bottom());
    }
}

}  // namespace brimvault::ui
