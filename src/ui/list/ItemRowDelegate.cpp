#include "ui/list/ItemRowDelegate.h"

#include <QPainter>

#include "ui/look/ImageLoad.h"
#include "ui/look/Look.h"
#include "ui/look/TextLine.h"

namespace brimvault::ui {

namespace {

constexpr qreal noteSize = 12;
constexpr int noteGap = 16;       // between the name and the note
constexpr int minNoteWidth = 40;  // in less than that nobody reads anything

int widthOfName(const QModelIndex& index) {
    return lineWidth(index.data().toString(), look::font(TextCellSmall::textSize));
}

}  // namespace

void ItemRowDelegate::drawGround(QPainter& painter, const QRect& cell, int row) const {
    ImageLoad::drawFilled(painter, cell, QLatin1String(row % 2 == 0 ? "table_row1" : "table_row2"));
}

bool ItemRowDelegate::isMuted(const QModelIndex& index) const { return index.data(ItemListModel::keptRole).toBool(); }

void ItemRowDelegate::drawText(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    RowDelegate::drawText(painter, option, index);
    const QString note = index.data(ItemListModel::noteRole).toString();
    const QRect room = drawFrees(painter, option, index, textRoom(option, index));
    if (note.isEmpty()) {
        return;
    }
    const int before = widthOfName(index) + look::scaled(noteGap);
    if (room.width() - before < look::scaled(minNoteWidth)) {
        return;
    }
    const QRect place = QStyle::visualRect(option.direction, room, room.adjusted(before, 0, 0, 0));
    painter.setPen(QColor(isSelected(option) ? look::textWarningOnAccent : look::textWarning));
    drawTextLine(painter, place, leadingSide(option.direction), look::font(noteSize), note);
}

// The name comes first: where both do not fit, the tooltip alone tells it.
QRect ItemRowDelegate::drawFrees(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index,
                                 const QRect& room) {
    const QString text = index.data(ItemListModel::freesRole).toString();
    if (text.isEmpty()) {
        return room;
    }
    const QFont font = look::font(noteSize);
    const int needed = lineWidth(text, font);
    const int before = room.width() - needed;
    if (before < widthOfName(index) + look::scaled(noteGap)) {
        return room;
    }
    painter.setPen(QColor(isSelected(option) ? look::textOnAccent : look::textSecondary));
    drawTextLine(painter, QStyle::visualRect(option.direction, room, room.adjusted(before, 0, 0, 0)),
                 trailingSide(option.direction), font, text);
    return QStyle::visualRect(option.direction, room, room.adjusted(0, 0, -needed - look::scaled(noteGap), 0));
}

// While its own icon is not loaded, or if it has none, a row shows a general picture.
void ItemRowDelegate::drawIcon(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const auto picture = index.data(ItemListModel::iconRole).value<RowPicture>();
    const QRect place = placed(option, index, {look::scaled(RowIcons::side), look::scaled(RowIcons::side)});
    const QPixmap icon = icons_->of(picture, painter.device()->devicePixelRatioF() * look::textScale());
    if (icon.isNull()) {
        const QByteArray name = QByteArray(picture.general.latin1()) + (isSelected(option) ? "Inv" : "");
        ImageLoad::draw(painter, place.topLeft(), QLatin1String(name));
        return;
    }
    QRectF shown(QPointF(), icon.deviceIndependentSize() * look::textScale());
    shown.moveCenter(QRectF(place).center());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(shown, icon, QRectF(icon.rect()));
}

}  // namespace brimvault::ui
