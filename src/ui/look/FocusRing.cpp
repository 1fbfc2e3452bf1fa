#include "ui/look/FocusRing.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QEvent>
#include <QPainter>
#include <utility>

#include "ui/look/Look.h"

namespace brimvault::ui {

namespace {

bool& keyboardWasLast() {
    static bool last = false;
    return last;
}

class InputWatch final : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        if (event->type() == QEvent::KeyPress || event->type() == QEvent::MouseButtonPress) {
            const bool keyboard = event->type() == QEvent::KeyPress;
            if (std::exchange(keyboardWasLast(), keyboard) != keyboard) {
                repaintFocus();
            }
        }
        return false;
    }

private:
    static void repaintFocus() {
        auto* widget = QApplication::focusWidget();
        if (auto* area = qobject_cast<QAbstractScrollArea*>(widget)) {
            area->viewport()->update();
        } else if (widget != nullptr) {
            widget->update();
        }
    }
};

}  // namespace

void watchFocus() { qApp->installEventFilter(new InputWatch(qApp)); }

bool isFocusShown(const QWidget* widget) { return keyboardWasLast() && widget->hasFocus(); }

void drawFocusRing(QPainter& painter, const QRectF& shape, qreal radius) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    const auto ring = [&](qreal inset, QRgb color, qreal width) {
        painter.setPen(QPen(QColor(color), width));
        painter.drawRoundedRect(shape.adjusted(inset, inset, -inset, -inset), radius - inset, radius - inset);
    };
    constexpr qreal innerInset = 2.5;
    ring(innerInset, look::textOnAccent, 1.5);
    ring(1, look::textPrimary, 2);
    painter.restore();
}

}  // namespace brimvault::ui
