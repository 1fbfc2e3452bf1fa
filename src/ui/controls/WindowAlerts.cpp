#include "ui/controls/WindowAlerts.h"

#include <QEvent>
#include <QPaintEvent>
#include <QPainter>

#include "ui/controls/AlertWindow.h"
#include "ui/look/Look.h"

namespace brimvault::ui {

namespace {

// Lies over a window that waits for an answer.
class Shade final : public QWidget {
public:
    explicit Shade(QWidget* window) : QWidget(window) {
        setGeometry(window->rect());
        window->installEventFilter(this);
        raise();
        show();
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == parentWidget() && event->type() == QEvent::Resize) {
            setGeometry(parentWidget()->rect());
        }
        return QWidget::eventFilter(watched, event);
    }
    void paintEvent(QPaintEvent* event) override {
        QPainter(this).fillRect(event->rect(), QColor::fromRgba(look::questionShade));
    }
};

}  // namespace

AlertAnswer WindowAlerts::runModal(const Alert& alert, QWidget* window) {
    const Shade shade(window);
    AlertWindow shown(alert, window);
    AlertAnswer answer;
    answer.returnCode = shown.exec() == QDialog::Accepted ? AlertAnswer::firstButton : AlertAnswer::secondButton;
    answer.suppressed = shown.isSuppressionTicked();
    return answer;
}

}  // namespace brimvault::ui
