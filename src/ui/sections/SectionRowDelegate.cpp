#include "ui/sections/SectionRowDelegate.h"

#include <QPainter>

#include "ui/look/FocusRing.h"
#include "ui/look/ImageLoad.h"
#include "ui/look/Look.h"
#include "ui/look/PlainToolTip.h"
#include "ui/sections/ImageTextCell.h"
#include "ui/sections/SectionListModel.h"

namespace brimvault::ui {

namespace {

constexpr QMargins cardShadow(2, 2, 2, 4);
constexpr int cardRadius = 10;
constexpr int checkLeft = 13;

bool isSelected(const QStyleOptionViewItem& option) { return (option.state & QStyle::State_Selected) != 0; }

// The card of a row: the row without the gap between cards, which lets the shadows show.
QRect card(const QRect& row) {
    constexpr int half = look::sectionRowGap / 2;
    return row.adjusted(half, half, -half, -half);
}

QRect textCell(const QRect& row, Qt::LayoutDirection direction) {
    const QRect place = card(row);
    return QStyle::visualRect(direction, place, place.adjusted(look::scaled(SectionsTableView::textLeft), 0, 0, 0));
}

void drawHover(QPainter& painter, const QRect& place) {
    constexpr qreal edge = 0.5;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(look::hoverLine), 1));
    painter.setBrush(QColor(look::row));
    painter.drawRoundedRect(QRectF(place).adjusted(edge, edge, -edge, -edge), cardRadius, cardRadius);
}

}  // namespace

QSize SectionRowDelegate::sizeHint(const QStyleOptionViewItem& /*option*/, const QModelIndex& /*index*/) const {
    return {0, look::scaled(look::sectionRowHeight) + look::sectionRowGap};
}

TextImgData SectionRowDelegate::valueOf(const QModelIndex& index, bool selected) {
    return {{index.data().toString(), index.data(SectionListModel::subtitleRole).toString(), selected,
             index.data(Qt::CheckStateRole).toInt() != Qt::Checked},
            index.data(SectionListModel::noteRole).toString(),
            sectionRows()[static_cast<std::size_t>(index.row())].icon};
}

void SectionRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    painter->save();
    const QRect place = card(option.rect);
    const bool selected = isSelected(option);
    if (!selected && (option.state & QStyle::State_MouseOver) != 0) {
        drawHover(*painter, place);
    } else {
        ImageLoad::drawStretched(*painter, place.marginsAdded(cardShadow),
                                 QLatin1String(selected ? "btnbgsel" : "btnbg"));
    }
    drawCheck(*painter, option, index);
    const TextImgData value = valueOf(index, selected);
    ImageTextCell(value).draw(*painter, textCell(option.rect, option.direction), option.direction);
    if (isFocusShown(view_) && view_->currentIndex() == index) {
        drawFocusRing(*painter, place, cardRadius);
    }
    painter->restore();
}

void SectionRowDelegate::drawCheck(QPainter& painter, const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const {
    const QRect row = card(option.rect);
    const int side = MCheckCell::side();
    const QRect place(row.left() + look::scaled(checkLeft), row.top() + (row.height() - side) / 2, side, side);
    const MCheckCell check = checkCell(option, index, view_->pressedCheck());
    check.draw(painter, QStyle::visualRect(option.direction, row, place).topLeft());
}

bool SectionRowDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                                   const QModelIndex& index) {
    if (event->type() != QEvent::ToolTip || !index.isValid()) {
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    }
    const TextImgData value = valueOf(index, isSelected(option));
    QString whole = ImageTextCell(value).expansionText(textCell(option.rect, option.direction));
    const QString places = index.data(Qt::ToolTipRole).toString();
    whole += (whole.isEmpty() || places.isEmpty() ? QString() : QStringLiteral("\n")) + places;
    showPlainToolTip(*event, whole, view);
    return true;
}

}  // namespace brimvault::ui
