#pragma once

#include <QLatin1String>
#include <QPixmap>
#include <QRectF>

class QPainter;

namespace brimvault::ui {

/// The window's pictures, by name. Each is loaded once, for its screen density, and kept for the life of the process.
/// Main thread only.
class ImageLoad {
public:
    /// The picture at the density given (device pixels to the point); null for an unknown name. It shares its pixels
    /// with what is kept, and stays whole whatever is loaded after it.
    [[nodiscard]] static QPixmap LoadPNGImage(QLatin1String name, qreal density);
    /// Size in points, grown with the text that it stands beside; 0 x 0 for an unknown name.
    [[nodiscard]] static QSizeF sizeOf(QLatin1String name);

    /// Draws the picture at a place, in its own size.
    static void draw(QPainter& painter, const QPointF& topLeft, QLatin1String name);
    /// Draws the picture over a rectangle with its corners kept as drawn and what is between them stretched.
    static void drawStretched(QPainter& painter, const QRectF& target, QLatin1String name);
    /// Draws the picture over a rectangle, all of it stretched.
    static void drawFilled(QPainter& painter, const QRect& target, QLatin1String name);
};

}  // namespace brimvault::ui
