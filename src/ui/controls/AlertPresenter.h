#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace brimvault::ui {

/// A question to the user, with a confirming button first and a cancelling one second; or something to be told, with
/// one button to take note of it. Where agreeing deletes something, the first button says so, and the second is the one
/// that a hasty key presses.
struct Alert {
    enum class Suppression { notOffered, offered };
    enum class Buttons { confirmAndCancel, deleteAndCancel, takeNote };
    /// What the answer is about: all of it together, then its parts.
    struct Facts {
        QString sum;  ///< empty for no facts
        QStringList parts;

        /// On one line, as it is read out.
        [[nodiscard]] QString line() const {
            return parts.isEmpty() ? sum : sum + QStringLiteral(": ") + parts.join(QStringLiteral(", "));
        }
    };

    QString message;
    QString informativeText;
    Suppression suppression = Suppression::notOffered;
    Buttons buttons = Buttons::confirmAndCancel;
    Facts facts{};
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
