#pragma once

#include <QDialog>

#include "ui/controls/AlertPresenter.h"
#include "ui/controls/TitledCheckBox.h"
#include "ui/controls/WhiteTitleButton.h"

class QVBoxLayout;

namespace brimvault::ui {

/// A question or a message in a dialog over the main window. The first button accepts it; the second one, the escape
/// key and closing it reject it. The return key presses the default button: the first, or the second one if the first
/// deletes something. Main thread.
class AlertWindow final : public QDialog {
    Q_OBJECT

public:
    AlertWindow(const Alert& alert, QWidget* window);

    [[nodiscard]] WhiteTitleButton* firstButton() const { return firstButton_; }
    /// Null for a message.
    [[nodiscard]] WhiteTitleButton* secondButton() const { return secondButton_; }
    [[nodiscard]] bool isSuppressionTicked() const {
        return suppressionBox_ != nullptr && suppressionBox_->isChecked();
    }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QVBoxLayout* makeTexts(const Alert& alert);
    [[nodiscard]] QLayout* makeButtons(const Alert& alert);

    WhiteTitleButton* firstButton_ = nullptr;
    WhiteTitleButton* secondButton_ = nullptr;
    TitledCheckBox* suppressionBox_ = nullptr;  ///< "do not show again"; null where that is not offered
};

/// Asks with an AlertWindow, and shades the window behind it.
class WindowAlerts final : public AlertPresenter {
public:
    AlertAnswer runModal(const Alert& alert, QWidget* window) override;
};

}  // namespace brimvault::ui
