#pragma once

#include <QLatin1String>
#include <QPixmap>
#include <QRectF>

class QPainter;

namespace brimvault::ui {

/// The window's pictures, by name. Each is loaded once for each screen density and cached until the process ends. Main
/// thread only.
class ImageLoad {
public:
    /// The picture at a density (device pixels per point); null for an unknown name. The result shares the pixels of
    /// the cache and stays valid.
    [[nodiscard]] static QPixmap LoadPNGImage(QLatin1String name, qreal density);
    /// Size in points, scaled with the text; 0 x 0 for an unknown name.
    [[nodiscard]] static QSizeF sizeOf(QLatin1String name);

    /// Draws the picture in its own size.
    static void draw(QPainter& painter, const QPointF& topLeft, QLatin1String name);
    /// Fills a rectangle with the picture: the corners keep their size, the parts between them are stretched.
    static void drawStretched(QPainter& painter, const QRectF& target, QLatin1String name);
    /// Fills a rectangle with the picture, stretched as a whole.
    static void drawFilled(QPainter& painter, const QRect& target, QLatin1String name);
};

}  // namespace brimvault::ui
