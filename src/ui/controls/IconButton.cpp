#include "ui/controls/IconButton.h"

#include <QAccessible>
#include <QPainter>
#include <utility>

#include "ui/look/FocusRing.h"
#include "ui/look/ImageLoad.h"
#include "ui/look/Look.h"

namespace brimvault::ui {

namespace {

constexpr QSize buttonSize(34, 30);
constexpr int cornerRadius = 8;
constexpr qreal disabledOpacity = 0.4;

}  // namespace

IconButton::IconButton(QLatin1String picture, const QString& name, QWidget* parent)
    : QAbstractButton(parent), picture_(picture) {
    setAccessibleName(name);
    setToolTip(name);
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize IconButton::sizeHint() const { return buttonSize * look::textScale(); }

// Not every assistive client reports the expanded state, so the description says it as well.
void IconButton::setOn(bool on) {
    if (std::exchange(on_, on) == on) {
        return;
    }
    setAccessibleDescription(on ? tr("Open") : QString());
    QAccessible::State changed;
    changed.expanded = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
    update();
}

void IconButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF face = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    const bool lit = isEnabled() && underMouse();
    painter.setPen(QColor(lit || on_ ? look::accentDark : look::separator));
    painter.setBrush(QColor(isDown() ? look::sortedHeaderBottom
                            : on_    ? look::sortedHeaderTop
                            : lit    ? look::rowAlternate
                                     : look::row));
    painter.drawRoundedRect(face, cornerRadius, cornerRadius);
    painter.setOpacity(isEnabled() ? 1.0 : disabledOpacity);
    const QLatin1String picture = on_ ? pictureOn_ : picture_;
    const QSizeF size = ImageLoad::sizeOf(picture);
    ImageLoad::draw(painter, {(width() - size.width()) / 2, (height() - size.height()) / 2}, picture);
    painter.setOpacity(1.0);
    if (isFocusShown(this)) {
        drawFocusRing(painter, face, cornerRadius);
    }
}

}  // namespace brimvault::ui
