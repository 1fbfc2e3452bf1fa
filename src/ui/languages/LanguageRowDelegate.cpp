#include "ui/languages/LanguageRowDelegate.h"

#include <QPainter>
#include <QPainterPath>

#include "langres/LangListController.h"
#include "ui/look/ImageLoad.h"
#include "ui/look/Look.h"

namespace brimvault::ui {

namespace {

constexpr int firstMargin = 16;  // check boxes stand below the heading
constexpr int nextMargin = 6;
constexpr qreal cornerRadius = 2.5;
const QColor edge(0, 0, 0, 46);  // flags with a white edge stand on white rows

}  // namespace

int LanguageRowDelegate::margin(int column) const {
    return column == CheckTableView::checkColumn ? firstMargin : nextMargin;
}

void LanguageRowDelegate::drawGround(QPainter& painter, const QRect& cell, int row) const {
    painter.fillRect(cell, QColor(row % 2 == 0 ? look::drawer : look::drawerAlternate));
}

// A flag need not be there: then the place is left free.
void LanguageRowDelegate::drawIcon(QPainter& painter, const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const {
    const QByteArray name = index.data(langres::LangListController::iconRole).toByteArray();
    const QSize size = ImageLoad::sizeOf(QLatin1String(name)).toSize();
    if (size.isEmpty()) {
        return;
    }
    const QRectF place = placed(option, index, size);
    QPainterPath shape;
    shape.addRoundedRect(place, cornerRadius, cornerRadius);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipPath(shape);
    painter.fillRect(place, Qt::white);
    ImageLoad::draw(painter, place.topLeft(), QLatin1String(name));
    painter.setClipping(false);
    painter.setPen(QPen(edge, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(place.adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
}

}  // namespace brimvault::ui
