#include "ui/controls/WhiteTitleButton.h"

#include <QEvent>
#include <QPainter>

#include "ui/look/FocusRing.h"
#include "ui/look/ImageLoad.h"
#include "ui/look/Look.h"
#include "ui/look/TextLine.h"

namespace brimvault::ui {

namespace {

// The pictures have a margin for their shadow.
constexpr QMarginsF shadowMargins(2, 2, 2, 4);
constexpr int cornerRadius = 10;
constexpr qreal indicatorGap = 10;
constexpr qreal hoverOpacity = 0.92;
constexpr int titleMargin = 24;
constexpr qreal defaultTitleSize = 15;

}  // namespace

WhiteTitleButton::WhiteTitleButton(QWidget* parent) : QPushButton(parent), titleColor_(look::textOnAccent) {
    setTitleSize(defaultTitleSize);
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setAutoDefault(true);
}

WhiteTitleButton* WhiteTitleButton::make(const QString& title, const Pictures& pictures, qreal titleSize) {
    auto* button = new WhiteTitleButton;
    button->setPictures(pictures);
    button->setTitle(title, title);
    button->setTitleSize(titleSize);
    return button;
}

WhiteTitleButton* WhiteTitleButton::makeClose(qreal titleSize) { return make(tr("Close"), accent, titleSize); }

void WhiteTitleButton::setSmall(int minWidth) {
    setMinimumWidth(look::scaled(minWidth));
    setFixedHeight(look::scaled(look::smallButtonHeight));
}

void WhiteTitleButton::setPictures(const Pictures& pictures) {
    pictures_ = pictures;
    update();
}

void WhiteTitleButton::setTitle(const QString& title, const QString& accessibleName) {
    action_ += accessibleName == this->accessibleName() ? 0 : 1;
    setText(title);
    setAccessibleName(accessibleName);
    placeIndicator();
}

void WhiteTitleButton::setTitleColor(const QColor& color) {
    titleColor_ = color;
    placeIndicator();
    update();
}

void WhiteTitleButton::setTitleSize(qreal size) { setFont(look::font(size, QFont::DemiBold)); }

ProgressIndicator* WhiteTitleButton::addIndicator(const QString& accessibleName) {
    indicator_ = new ProgressIndicator(accessibleName, this);
    connect(indicator_, &ProgressIndicator::animationChanged, this, [this] {
        placeIndicator();
        update();
    });
    placeIndicator();
    return indicator_;
}

QSize WhiteTitleButton::sizeHint() const {
    return {fontMetrics().horizontalAdvance(text()) + 2 * look::scaled(titleMargin),
            look::scaled(look::buttonHeight) + qRound(shadowMargins.top() + shadowMargins.bottom())};
}

QColor WhiteTitleButton::textColor() const { return isEnabled() ? titleColor_ : QColor(look::textDisabled); }

// The title and the indicator stand in the middle together; an indicator that does not turn takes no room.
QRectF WhiteTitleButton::titlePlace() const {
    const QRectF face = QRectF(rect()).marginsRemoved(shadowMargins);
    const qreal title = fontMetrics().horizontalAdvance(text());
    const bool turns = indicator_ != nullptr && indicator_->isAnimated();
    const qreal taken = turns ? indicatorGap + indicator_->sizeHint().width() : 0;
    const qreal room = std::min(title + 1, face.width() - taken - 2 * indicatorGap);
    const QRectF place(face.center().x() - (room + taken) / 2, face.top(), room, face.height());
    return isRightToLeft() ? place.translated(taken, 0) : place;
}

void WhiteTitleButton::placeIndicator() {
    if (indicator_ == nullptr) {
        return;
    }
    const QRectF title = titlePlace();
    const QSize size = indicator_->sizeHint();
    const qreal left = isRightToLeft() ? title.left() - indicatorGap - size.width() : title.right() + indicatorGap;
    indicator_->setGeometry(QRect(QPointF(left, title.center().y() - size.height() / 2.0).toPoint(), size));
    indicator_->setColor(textColor());
}

void WhiteTitleButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() && underMouse() && !isDown() ? hoverOpacity : 1.0);
    const QLatin1String off("btnOff");
    ImageLoad::drawStretched(painter, rect(), !isEnabled() ? off : isDown() ? pictures_.pressed : pictures_.atRest);
    painter.setOpacity(1.0);
    painter.setPen(textColor());
    drawTextLine(painter, titlePlace().toRect(), Qt::AlignLeft, font(), text());
    if (isFocusShown(this)) {
        drawFocusRing(painter, QRectF(rect()).marginsRemoved(shadowMargins), cornerRadius);
    }
}

void WhiteTitleButton::mousePressEvent(QMouseEvent* event) {
    pressedAction_ = action_;
    QPushButton::mousePressEvent(event);
}

void WhiteTitleButton::mouseDoubleClickEvent(QMouseEvent* event) {
    if (action_ == pressedAction_) {
        mousePressEvent(event);
    }
}

void WhiteTitleButton::changeEvent(QEvent* event) {
    QPushButton::changeEvent(event);
    placeIndicator();
}

void WhiteTitleButton::resizeEvent(QResizeEvent* event) {
    QPushButton::resizeEvent(event);
    placeIndicator();
}

}  // namespace brimvault::ui
