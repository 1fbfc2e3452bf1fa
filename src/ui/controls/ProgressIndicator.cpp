#include "ui/controls/ProgressIndicator.h"

#include <QAccessible>
#include <QPainter>
#include <utility>

#include "ui/look/Look.h"

namespace brimvault::ui {

namespace {

constexpr int steps = 12;
constexpr int interval = 80;  // milliseconds; slow, to keep the processor idle
constexpr int side = 19;
constexpr qreal stroke = 2;
constexpr float groundOpacity = 0.35F;

}  // namespace

ProgressIndicator::ProgressIndicator(const QString& accessibleName, QWidget* parent)
    : QWidget(parent), percentNews_([this] {
          QAccessibleValueChangeEvent event(this, percent_);
          QAccessible::updateAccessibility(&event);
      }) {
    setAccessibleName(accessibleName);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
    turning_.setInterval(interval);
    connect(&turning_, &QTimer::timeout, this, [this] {
        step_ = (step_ + 1) % steps;
        update();
    });
}

void ProgressIndicator::startAnimation() {
    setPercent(0);
    turning_.start();
    show();
    Q_EMIT animationChanged();
}

void ProgressIndicator::stopAnimation() {
    turning_.stop();
    percentNews_.flush();  // events of a hidden widget are not delivered
    hide();
    Q_EMIT animationChanged();
}

void ProgressIndicator::setPercent(int percent) {
    if (std::exchange(percent_, percent) != percent && QAccessible::isActive()) {
        percentNews_.changed();
    }
}

QSize ProgressIndicator::sizeHint() const { return QSize(side, side) * look::textScale(); }

void ProgressIndicator::paintEvent(QPaintEvent* /*event*/) {
    constexpr int turn = 360 * 16;  // QPainter counts in sixteenths of a degree
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF ring = QRectF(rect()).adjusted(1, 1, -1, -1);
    QColor ground = color_;
    ground.setAlphaF(groundOpacity);
    painter.setPen(QPen(ground, stroke));
    painter.drawEllipse(ring);
    painter.setPen(QPen(color_, stroke, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(ring, -turn * step_ / steps, turn / 4);
}

}  // namespace brimvault::ui
