#pragma once

#include <QLatin1String>
#include <QPainter>
#include <QWidget>

#include "ui/look/ImageLoad.h"

namespace brimvault::ui {

/// A picture in a square of its own, drawn at the density of the screen. It says nothing that a text beside it does not
/// say, so an assistive client is not told of it. Main thread.
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
