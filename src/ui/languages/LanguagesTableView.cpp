#include "ui/languages/LanguagesTableView.h"

#include <QHeaderView>
#include <QPainter>
#include <QPainterPath>

#include "langres/LangListController.h"
#include "ui/look/ImageLoad.h"
#include "ui/look/Look.h"
#include "ui/table/RowDelegate.h"

namespace brimvault::ui {

namespace {

static_assert(static_cast<int>(langres::LangListController::textColumn) == CheckTableView::textColumn);

constexpr int firstMargin = 16;  // check boxes stand below the heading
constexpr int nextMargin = 6;
constexpr int checkColumnWidth = 36;  // as wide as a check box and a flag need with their margins
constexpr int iconColumnWidth = 33;
constexpr qreal cornerRadius = 2.5;

class LanguageRowDelegate final : public RowDelegate {
public:
    using RowDelegate::RowDelegate;

protected:
    [[nodiscard]] int margin(int column) const override {
        return column == CheckTableView::checkColumn ? firstMargin : nextMargin;
    }
    void drawGround(QPainter& painter, const QRect& cell, int row) const override {
        painter.fillRect(cell, QColor(row % 2 == 0 ? look::drawer : look::drawerAlternate));
    }
    void drawIcon(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

// Not every language has a flag.
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
    painter.setPen(QPen(QColor::fromRgba(look::flagEdge), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(place.adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
}

}  // namespace

LanguagesTableView::LanguagesTableView(QWidget* parent) : CheckTableView(parent) {
    setItemDelegate(new LanguageRowDelegate(this));
    setAccessibleName(tr("Languages"));
    horizontalHeader()->hide();
    horizontalHeader()->setMinimumSectionSize(0);
    QPalette ground = palette();
    ground.setColor(QPalette::Base, QColor(look::drawer));
    setPalette(ground);
}

void LanguagesTableView::setModel(QAbstractItemModel* model) {
    CheckTableView::setModel(model);
    fixWidth(checkColumn, look::scaled(checkColumnWidth));
    fixWidth(iconColumn, look::scaled(iconColumnWidth));
}

}  // namespace brimvault::ui
