#include "ui/controls/TitledCheckBox.h"

#include <QPainter>
#include <algorithm>

#include "ui/controls/MCheckCell.h"
#include "ui/look/FocusRing.h"
#include "ui/look/Look.h"

namespace brimvault::ui {

namespace {

constexpr int verticalMargin = 7;
constexpr int cornerRadius = 7;
constexpr qreal textSize = 12;

}  // namespace

TitledCheckBox::TitledCheckBox(const QString& title, QWidget* parent) : QCheckBox(title, parent) {
    setFont(look::font(textSize));
    setAttribute(Qt::WA_Hover);
}

QSize TitledCheckBox::sizeWith(const QString& title) const {
    constexpr int slack = 4;  // for rounding of the letters' widths
    return {MCheckCellT::widthBesideTitle() + fontMetrics().horizontalAdvance(title) + slack,
            std::max(MCheckCell::side(), fontMetrics().height()) + 2 * verticalMargin};
}

// The pictures for the state at rest are transparent.
QLatin1String TitledCheckBox::plate() const {
    const bool all = checkState() == Qt::Checked;
    if (isDown()) {
        return QLatin1String(all ? "btnUnSelectAll" : "btnSelectAll");
    }
    return QLatin1String(all ? "btnUnSelectAllDes" : "btnSelectAllDes");
}

void TitledCheckBox::paintEvent(QPaintEvent* /*event*/) {
    MCheckCellT cell;
    cell.state = checkState();
    cell.highlighted = isDown();
    cell.hovered = underMouse();
    cell.enabled = isEnabled();
    cell.title = text();
    cell.bezel = plate();
    cell.direction = layoutDirection();
    QPainter painter(this);
    cell.draw(painter, rect(), font());
    if (isFocusShown(this)) {
        drawFocusRing(painter, rect(), cornerRadius);
    }
}

}  // namespace brimvault::ui
