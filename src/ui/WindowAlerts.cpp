#include "ui/WindowAlerts.h"

#include "ui/AlertWindow.h"

namespace brimvault::ui {

AlertAnswer WindowAlerts::runModal(const Alert& alert, QWidget* window) {
    AlertWindow shown(alert, window);
    AlertAnswer answer;
    answer.returnCode = shown.exec() == QDialog::Accepted ? AlertAnswer::firstButton : AlertAnswer::secondButton;
    answer.suppressed = shown.isSuppressionTicked();
    return answer;
}

}  // namespace brimvault::ui
