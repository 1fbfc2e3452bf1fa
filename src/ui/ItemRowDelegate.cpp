#include "ui/ItemRowDelegate.h"

#include <QPainter>

#include "ui/CheckPicture.h"
#include "ui/FilePicture.h"
#include "ui/FocusRing.h"
#include "ui/ImageLoad.h"
#include "ui/ItemListModel.h"
#include "ui/Look.h"
#include "ui/TTableView.h"
#include "ui/TextLine.h"

namespace brimvault::ui {

namespace {

constexpr int margin = 10;
constexpr int iconSize = 20;
constexpr qreal textSize = 13;

bool isSelected(const QStyleOptionViewItem& option) { return (option.state & QStyle::State_Selected) != 0; }

QRgb background(const QStyleOptionViewItem& option, int row) {
    if (isSelected(option)) {
        return look::selection;
    }
    return row % 2 == 0 ? look::rowAlternate : look::row;
}

// A picture in its cell, a margin from where the text begins.
QPoint placed(const QStyleOptionViewItem& option, int size) {
    const QRect place(option.rect.left() + margin, option.rect.top() + (option.rect.height() - size) / 2, size, size);
    return QStyle::visualRect(option.direction, option.rect, place).topLeft();
}

}  // namespace

ItemRowDelegate::ItemRowDelegate(TTableView* view) : QStyledItemDelegate(view), view_(view) {}

void ItemRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    painter->save();
    painter->fillRect(option.rect, QColor(background(option, index.row())));
    switch (index.column()) {
        case ItemListModel::checkColumn:
            drawCheck(*painter, option, index);
            break;
        case ItemListModel::iconColumn:
            drawIcon(*painter, option, index);
            break;
        default:
            drawText(*painter, option, index);
    }
    drawFocus(*painter, option, index);
    painter->restore();
}

void ItemRowDelegate::drawCheck(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    painter.setOpacity(index.flags().testFlag(Qt::ItemIsUserCheckable) ? 1.0 : disabledCheckOpacity);
    const auto state = static_cast<Qt::CheckState>(index.data(Qt::CheckStateRole).toInt());
    const auto ground = isSelected(option) ? CheckGround::selected : CheckGround::plain;
    ImageLoad::draw(painter, placed(option, checkSize), checkPicture(state, view_->pressedCheck() == index, ground));
    painter.setOpacity(1.0);
}

void ItemRowDelegate::drawIcon(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) {
    const auto kind = static_cast<files::NodeKind>(index.data(ItemListModel::iconRole).toInt());
    ImageLoad::draw(painter, placed(option, iconSize), filePicture(kind, isSelected(option)));
}

void ItemRowDelegate::drawText(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) {
    const QFont font = look::font(textSize);
    const QRect place = option.rect.adjusted(margin, 0, -margin, 0);
    const bool number = index.column() == ItemListModel::sizeColumn;
    painter.setPen(QColor(isSelected(option) ? look::textOnAccent : look::textPrimary));
    drawTextLine(painter, place, number ? trailingSide(option.direction) : leadingSide(option.direction), font,
                 index.data().toString(), Qt::ElideMiddle);
}

// The focus of the keyboard is on a row: a line above and below it, closed at both ends.
void ItemRowDelegate::drawFocus(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    if (!isFocusShown(view_) || view_->currentIndex().row() != index.row()) {
        return;
    }
    painter.setPen(QPen(QColor(isSelected(option) ? look::textOnAccent : look::accentDark), 1));
    const QRect frame = option.rect.adjusted(0, 1, 0, -2);
    painter.drawLine(frame.topLeft(), frame.topRight());
    painter.drawLine(frame.bottomLeft(), frame.bottomRight());
    const bool first = index.column() == 0;
    const bool last = index.column() == ItemListModel::columns - 1;
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
