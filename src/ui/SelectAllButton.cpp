#include "ui/SelectAllButton.h"

#include <QPainter>
#include <QSignalBlocker>
#include <algorithm>

#include "ui/FocusRing.h"
#include "ui/Look.h"
#include "ui/MCheckCellT.h"

namespace brimvault::ui {

namespace {

constexpr int verticalMargin = 7;
constexpr int cornerRadius = 7;
constexpr qreal textSize = 12;

}  // namespace

SelectAllButton::SelectAllButton(QWidget* parent) : QCheckBox(parent) {
    setFont(look::font(textSize));
    setAccessibleName(tr("Select All"));
    setAttribute(Qt::WA_Hover);
    updateBtnSelectAllLook();
}

void SelectAllButton::setSelAllChecked(int state) {
    const QSignalBlocker quiet(this);
    setTristate(state < 0);
    setCheckState(state < 0 ? Qt::PartiallyChecked : state == 0 ? Qt::Unchecked : Qt::Checked);
    updateBtnSelectAllLook();
}

void SelectAllButton::nextCheckState() {
    const bool all = checkState() == Qt::Checked;  // before the mixed state is given up: without it, mixed reads as all
    setTristate(false);
    setCheckState(all ? Qt::Unchecked : Qt::Checked);
    updateBtnSelectAllLook();
}

void SelectAllButton::updateBtnSelectAllLook() {
    setText(checkState() == Qt::Checked ? tr("Unselect All") : tr("Select All"));
    update();
}

// As wide as the longer of its texts, so that nothing moves when it changes.
QSize SelectAllButton::sizeHint() const {
    const int text = std::max(fontMetrics().horizontalAdvance(tr("Unselect All")),
                              fontMetrics().horizontalAdvance(tr("Select All")));
    constexpr int slack = 4;  // for fractions of the letters' widths
    return {MCheckCellT::widthBesideTitle() + text + slack,
            std::max(MCheckCell::side, fontMetrics().height()) + 2 * verticalMargin};
}

// At rest there is none to be seen: the check box and its title stand on the bar itself.
QLatin1String SelectAllButton::plate() const {
    const bool all = checkState() == Qt::Checked;
    if (isDown()) {
        return QLatin1String(all ? "btnUnSelectAll" : "btnSelectAll");
    }
    return QLatin1String(all ? "btnUnSelectAllDes" : "btnSelectAllDes");
}

void SelectAllButton::paintEvent(QPaintEvent* /*event*/) {
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
