#pragma once

#include <QRectF>

class QPainter;
class QWidget;

namespace brimvault::ui {

/// Starts to watch whether the user works with the keyboard or with the mouse. Once, after the application is made.
void watchFocus();

/// Whether the widget is to show that it has the keyboard's focus: it has it, and the keyboard was used last. Main
/// thread.
[[nodiscard]] bool isFocusShown(const QWidget* widget);

/// The mark of keyboard focus around a shape, the same everywhere: white inside, so that it stands out on any colour.
void drawFocusRing(QPainter& painter, const QRectF& shape, qreal radius);

}  // namespace brimvault::ui
