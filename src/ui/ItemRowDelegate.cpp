#include "ui/ItemRowDelegate.h"

#include <QPainter>

#include "ui/ImageLoad.h"

namespace brimvault::ui {

namespace {

constexpr QSize iconSize(20, 20);

}  // namespace

void ItemRowDelegate::drawGround(QPainter& painter, const QRect& cell, int row) const {
    ImageLoad::drawFilled(painter, cell, QLatin1String(row % 2 == 0 ? "table_row1" : "table_row2"));
}

// On the ground of a selected row a picture has another form, of the same name with "Inv".
void ItemRowDelegate::drawIcon(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const QByteArray name = index.data(ItemListModel::iconRole).toByteArray() + (isSelected(option) ? "Inv" : "");
    ImageLoad::draw(painter, placed(option, index, iconSize).topLeft(), QLatin1String(name));
}

}  // namespace brimvault::ui
