#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace brimvault::ui {

/// A question to the user, whose first button confirms and whose second cancels; or a message with an OK button alone.
/// If confirming deletes something, the first button is named "Delete" and the second one is the default.
struct Alert {
    enum class Suppression { notOffered, offered };
    enum class Buttons { confirmAndCancel, deleteAndCancel, takeNote };
    /// The figures of the question: the sum, then its parts.
    struct Facts {
        QString sum;  ///< empty for a question without figures
        QStringList parts;

        /// On one line, for assistive clients.
        [[nodiscard]] QString line() const {
            return parts.isEmpty() ? sum : sum + QStringLiteral(": ") + parts.join(QStringLiteral(", "));
        }
    };

    /// What may be lost, told apart from the rest.
    struct Warning {
        QString sum;  ///< empty for a question without a warning
        QStringList lines;

        [[nodiscard]] QString text() const { return (QStringList(sum) + lines).join(QLatin1Char('\n')); }
    };

    QString message;
    QString informativeText;
    Suppression suppression = Suppression::notOffered;
    Buttons buttons = Buttons::confirmAndCancel;
    Facts facts{};
    Warning warning{};
};

struct AlertAnswer {
    static constexpr int firstButton = 1000;
    static constexpr int secondButton = 1001;

    int returnCode = secondButton;
    bool suppressed = false;  ///< whether "do not show again" was ticked
};

/// Asks the user. Main thread; returns when the question is answered.
class AlertPresenter {
public:
    virtual ~AlertPresenter() = default;
    virtual AlertAnswer runModal(const Alert& alert, QWidget* window) = 0;
};

}  // namespace brimvault::ui
