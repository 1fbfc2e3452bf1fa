#include "ui/list/ItemRowDelegate.h"

#include <QPainter>

#include "ui/look/ImageLoad.h"
#include "ui/look/Look.h"

namespace brimvault::ui {

void ItemRowDelegate::drawGround(QPainter& painter, const QRect& cell, int row) const {
    ImageLoad::drawFilled(painter, cell, QLatin1String(row % 2 == 0 ? "table_row1" : "table_row2"));
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
