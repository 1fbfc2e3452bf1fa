#include "ui/ActionButton.h"

#include <QPainter>

#include "ui/FocusRing.h"
#include "ui/ImageLoad.h"
#include "ui/Look.h"
#include "ui/TextLine.h"

namespace brimvault::ui {

namespace {

// The pictures have a margin for their shadow.
constexpr QMarginsF shadowMargins(2, 2, 2, 4);
constexpr int cornerRadius = 10;
constexpr int spinnerSteps = 12;
constexpr int spinnerInterval = 80;  // milliseconds; slow enough to cost nothing
constexpr qreal spinnerSize = 17;
constexpr qreal spinnerGap = 10;
constexpr qreal hoverOpacity = 0.92;
constexpr int textMargin = 24;
constexpr qreal textSize = 15;

}  // namespace

ActionButton::ActionButton(QWidget* parent) : QPushButton(parent) {
    setFont(look::font(textSize, QFont::DemiBold));
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setAutoDefault(true);
    spinner_.setInterval(spinnerInterval);
    connect(&spinner_, &QTimer::timeout, this, [this] {
        spinnerStep_ = (spinnerStep_ + 1) % spinnerSteps;
        update();
    });
}

void ActionButton::setLook(Look look, const QString& text, const QString& accessibleName) {
    look_ = look;
    setText(text);
    setAccessibleName(accessibleName);
    update();
}

void ActionButton::startAnimation() { spinner_.start(); }

void ActionButton::stopAnimation() {
    spinner_.stop();
    update();
}

QSize ActionButton::sizeHint() const {
    return {fontMetrics().horizontalAdvance(text()) + 2 * textMargin, look::scaled(look::buttonHeight)};
}

QLatin1String ActionButton::picture() const {
    if (!isEnabled()) {
        return QLatin1String("btnOff");
    }
    switch (look_) {
        case Look::scan:
            return isDown() ? QLatin1String("btnScan") : QLatin1String("btnScanDes");
        case Look::quiet:
            return isDown() ? QLatin1String("btnQuiet") : QLatin1String("btnQuietDes");
        case Look::stop:
            return isDown() ? QLatin1String("btnStop") : QLatin1String("btnStopDes");
        case Look::clean:
            break;
    }
    return isDown() ? QLatin1String("btnClean") : QLatin1String("btnCleanDes");
}

QColor ActionButton::textColor() const {
    if (!isEnabled()) {
        return QColor(look::textDisabled);
    }
    return QColor(look_ == Look::quiet ? look::accentDark : look::textOnAccent);
}

void ActionButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() && underMouse() && !isDown() ? hoverOpacity : 1.0);
    ImageLoad::drawStretched(painter, rect(), picture());
    painter.setOpacity(1.0);

    const QRectF face = QRectF(rect()).marginsRemoved(shadowMargins);
    const qreal textWidth = fontMetrics().horizontalAdvance(text());
    const qreal width = textWidth + (isAnimated() ? spinnerGap + spinnerSize : 0);
    const qreal left = std::max(face.left() + spinnerGap, face.center().x() - width / 2);
    const qreal room = std::min(textWidth + 1, face.width() - 2 * spinnerGap);
    painter.setPen(textColor());
    drawTextLine(painter, QRectF(left, face.top(), room, face.height()).toRect(), Qt::AlignLeft, font(), text());
    if (isAnimated()) {
        drawSpinner(painter,
                    {left + textWidth + spinnerGap, face.center().y() - spinnerSize / 2, spinnerSize, spinnerSize});
    }
    if (isFocusShown(this)) {
        drawFocusRing(painter, face, cornerRadius);
    }
}

void ActionButton::drawSpinner(QPainter& painter, const QRectF& place) const {
    constexpr int turn = 360 * 16;  // angles are counted in sixteenths of a degree
    constexpr qreal stroke = 2;
    QColor color = textColor();
    constexpr float faint = 0.35F;
    color.setAlphaF(faint);
    painter.setPen(QPen(color, stroke));
    painter.drawEllipse(place);
    painter.setPen(QPen(textColor(), stroke, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(place, -turn * spinnerStep_ / spinnerSteps, turn / 4);
}

}  // namespace brimvault::ui
