#pragma once

#include <QDialog>

#include "ui/controls/AlertPresenter.h"
#include "ui/controls/TitledCheckBox.h"
#include "ui/controls/WhiteTitleButton.h"

class QVBoxLayout;

namespace brimvault::ui {

/// A question to the user, or something to be told, in a window of its own over the main one. Accepted by the first
/// button; the second, the escape key and closing it are the other answer. The return key presses the first, or the
/// second where the first deletes something. Main thread.
class AlertWindow final : public QDialog {
    Q_OBJECT

public:
    AlertWindow(const Alert& alert, QWidget* window);

    [[nodiscard]] WhiteTitleButton* firstButton() const { return firstButton_; }
    /// Null where there is nothing to be cancelled.
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

/// Asks with an AlertWindow over the window.
class WindowAlerts final : public AlertPresenter {
public:
    AlertAnswer runModal(const Alert& alert, QWidget* window) override;
};

}  // namespace brimvault::ui
