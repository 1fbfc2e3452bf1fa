#pragma once

#include <QString>

class QWidget;

namespace brimvault::ui {

/// A question to the user, with a confirming button first and a cancelling one second; or something to be told, with
/// one button to take note of it.
struct Alert {
    enum class Suppression { notOffered, offered };
    enum class Buttons { confirmAndCancel, takeNote };

    QString message;
    QString informativeText;
    Suppression suppression = Suppression::notOffered;
    Buttons buttons = Buttons::confirmAndCancel;
};

struct AlertAnswer {
    static constexpr int firstButton = 1000;
    static constexpr int secondButton = 1001;

    int returnCode = secondButton;
    bool suppressed = false;  ///< the box "do not show again" was ticked
};

/// Asks the user. Main thread; returns when the question is answered.
class AlertPresenter {
public:
    virtual ~AlertPresenter() = default;
    virtual AlertAnswer runModal(const Alert& alert, QWidget* window) = 0;
};

}  // namespace brimvault::ui
