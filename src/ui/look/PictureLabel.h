#pragma once

#include <QLatin1String>
#include <QPainter>
#include <QWidget>

#include "ui/look/ImageLoad.h"

namespace brimvault::ui {

/// A square picture, drawn at the density of the screen. It is decoration beside a text and has no accessible name.
/// Main thread.
class PictureLabel final : public QWidget {
public:
    PictureLabel(QLatin1String picture, int side, QWidget* parent = nullptr) : QWidget(parent), picture_(picture) {
        setFixedSize(side, side);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        const QPixmap& drawn = ImageLoad::LoadPNGImage(picture_, 2 * devicePixelRatioF());
        painter.drawPixmap(QRectF(rect()), drawn, QRectF(QPointF(), drawn.size()));
    }

private:
    QLatin1String picture_;
};

}  // namespace brimvault::ui
