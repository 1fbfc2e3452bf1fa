#pragma once

#include <QRectF>

class QPainter;
class QWidget;

namespace brimvault::ui {

/// Installs the event filter that tells keyboard from mouse use. Once, after the application is made.
void watchFocus();

/// Whether the widget shows its focus ring: it has the keyboard focus, and the last input was a key. Main thread.
[[nodiscard]] bool isFocusShown(const QWidget* widget);

/// Draws the focus ring around a shape: dark outside and white inside, so that it stands out on any colour.
void drawFocusRing(QPainter& painter, const QRectF& shape, qreal radius);

}  // namespace brimvault::ui
