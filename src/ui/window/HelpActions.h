#pragma once

#include <QObject>
#include <QPointer>

#include "ui/services/UtilMod.h"
#include "ui/window/AboutWC.h"

namespace brimvault::ui {

/// The help items of the menu: the about window, a mail to the makers, a mail to friends. Main thread.
class HelpActions final : public QObject {
    Q_OBJECT

public:
    /// Both outlive it.
    HelpActions(QWidget* window, UtilMod& util) : window_(window), util_(util) {}

    void showAboutScreen();
    void sendFeedbackPressed();
    void shareByMail();

private:
    QWidget* window_;
    UtilMod& util_;
    QPointer<AboutWC> m_aboutWC_;  ///< while it is open
};

}  // namespace brimvault::ui
