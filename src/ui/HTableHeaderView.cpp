#include "ui/HTableHeaderView.h"

#include <QPainter>

#include "ui/ImageLoad.h"
#include "ui/ItemListModel.h"
#include "ui/Look.h"
#include "ui/TextLine.h"

namespace brimvault::ui {

namespace {

constexpr qreal textSize = 11.5;
constexpr int margin = 10;
constexpr int arrowGap = 6;

// The arrow of a column of numbers is drawn reversed: the largest first is its usual order.
bool bReverceSort(int column) { return ItemListModel::isNumber(column); }

}  // namespace

HTableHeaderView::HTableHeaderView(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
    setSectionsClickable(true);
    setHighlightSections(false);
    setFont(look::font(textSize, QFont::DemiBold));
    setMinimumSectionSize(0);
}

QSize HTableHeaderView::sizeHint() const { return {QHeaderView::sizeHint().width(), look::scaled(look::headerHeight)}; }

void HTableHeaderView::paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const {
    const bool sorted = logicalIndex == sortIndicatorSection();
    QLinearGradient ground(rect.topLeft(), rect.bottomLeft());
    ground.setColorAt(0, QColor(sorted ? look::sortedHeaderTop : look::headerTop));
    ground.setColorAt(1, QColor(sorted ? look::sortedHeaderBottom : look::headerBottom));
    painter->fillRect(rect, ground);
    painter->setPen(QColor(look::headerLine));
    painter->drawLine(rect.bottomLeft(), rect.bottomRight());

    const QSizeF arrowSize = ImageLoad::sizeOf(QLatin1String("sortTrAsc"));
    QRect text = rect.adjusted(margin, 0, -margin, 0);
    if (sorted) {
        const bool ascending = sortIndicatorOrder() == Qt::AscendingOrder;
        const qreal left = isRightToLeft() ? text.left() : text.right() + 1 - arrowSize.width();
        const qreal top = rect.center().y() - arrowSize.height() / 2 + 1;
        ImageLoad::draw(*painter, {left, top},
                        QLatin1String(ascending != bReverceSort(logicalIndex) ? "sortTrAsc" : "sortTrDesc"));
        const int taken = qRound(arrowSize.width()) + arrowGap;
        text.adjust(isRightToLeft() ? taken : 0, 0, isRightToLeft() ? 0 : -taken, 0);
    }
    const bool number = ItemListModel::isNumber(logicalIndex);
    painter->setPen(QColor(sorted ? look::accentDark : look::textHeader));
    drawTextLine(*painter, text, number ? trailingSide(layoutDirection()) : leadingSide(layoutDirection()), font(),
                 model()->headerData(logicalIndex, Qt::Horizontal).toString());
}

}  // namespace brimvault::ui
