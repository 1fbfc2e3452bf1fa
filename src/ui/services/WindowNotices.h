#pragma once

#include <QPointer>
#include <QWidget>

#include "ui/controls/AlertPresenter.h"

namespace brimvault::ui {

/// Alerts over the window, for as long as there is one. Main thread.
class WindowNotices {
public:
    /// The presenter must outlive this object.
    explicit WindowNotices(AlertPresenter& alerts) : alerts_(alerts) {}

    void setWindow(QWidget* window) { window_ = window; }
    /// Null once the window has gone.
    [[nodiscard]] QWidget* window() const { return window_; }

    /// Asks the user; without a window the answer is no.
    [[nodiscard]] bool ask(const Alert& alert) const {
        return window_ && alerts_.runModal(alert, window_).returnCode == AlertAnswer::firstButton;
    }
    /// Shows an alert that the user can only close.
    void show(const QString& message, const QString& informativeText) const {
        if (window_) {
            alerts_.runModal({message, informativeText, Alert::Suppression::notOffered, Alert::Buttons::takeNote},
                             window_);
        }
    }

private:
    AlertPresenter& alerts_;
    QPointer<QWidget> window_;
};

}  // namespace brimvault::ui
