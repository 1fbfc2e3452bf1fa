#include "ui/SelectAllButton.h"

#include <QPainter>
#include <QSignalBlocker>
#include <QStyle>

#include "ui/CheckPicture.h"
#include "ui/FocusRing.h"
#include "ui/ImageLoad.h"
#include "ui/Look.h"
#include "ui/TextLine.h"

namespace brimvault::ui {

namespace {

constexpr int textGap = 8;
constexpr int margin = 6;
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
    return {2 * margin + checkSize + textGap + text + slack, std::max(checkSize, fontMetrics().height()) + 2 * margin};
}

void SelectAllButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setOpacity(isEnabled() ? 1.0 : disabledCheckOpacity);
    const QRect place =
        style()->visualRect(layoutDirection(), rect(), QRect(margin, (height() - checkSize) / 2, checkSize, checkSize));
    ImageLoad::draw(painter, place.topLeft(), checkPicture(checkState(), isDown(), CheckGround::plain));
    const QRect words =
        style()->visualRect(layoutDirection(), rect(), rect().adjusted(margin + checkSize + textGap, 0, -margin, 0));
    painter.setPen(QColor(underMouse() && isEnabled() ? look::textPrimary : look::textControl));
    drawTextLine(painter, words, leadingSide(layoutDirection()), font(), text());
    if (isFocusShown(this)) {
        painter.setOpacity(1.0);
        drawFocusRing(painter, rect(), margin);
    }
}

}  // namespace brimvault::ui
