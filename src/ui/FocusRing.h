#pragma once

#include <QPainter>
#include <QRectF>

#include "ui/Look.h"

namespace brimvault::ui {

/// The mark of keyboard focus around a shape, the same everywhere: white inside, so that it stands out on any colour.
inline void drawFocusRing(QPainter& painter, const QRectF& shape, qreal radius) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    constexpr qreal outerInset = 1;
    constexpr qreal innerInset = 2.5;
    const auto ring = [&](qreal inset, QRgb color, qreal width) {
        painter.setPen(QPen(QColor(color), width));
        painter.drawRoundedRect(shape.adjusted(inset, inset, -inset, -inset), radius - inset, radius - inset);
    };
    ring(innerInset, look::textOnAccent, 1.5);
    ring(outerInset, look::textPrimary, 2);
    painter.restore();
}

}  // namespace brimvault::ui
