#include "ui/window/HelpActions.h"

namespace brimvault::ui {

namespace {

// A reserved name that leads nowhere, until there is a mailbox.
QString supportRecipient() { return QStringLiteral("support@brimvault.example"); }

}  // namespace

void HelpActions::showAboutScreen() {
    if (m_aboutWC_ == nullptr || !m_aboutWC_->isVisible()) {
        m_aboutWC_ = new AboutWC(window_);
        m_aboutWC_->show();
    }
    m_aboutWC_->raise();
    m_aboutWC_->activateWindow();
}

void HelpActions::sendFeedbackPressed() {
    util_.composeMail({supportRecipient(), tr("Send FeedBack. Brimvault"),
                       tr("Thank you for using Brimvault.\n\nWhat would make it better? Every idea is welcome:\n\n")});
}

void HelpActions::shareByMail() {
    util_.composeMail({{},
                       QStringLiteral("Brimvault"),
                       tr("Brimvault frees disk space: it shows what caches, unneeded languages, logs, downloads and "
                          "the trash hold, and removes what you tick.\n\n%1\n")
                           .arg(productPage())});
}

}  // namespace brimvault::ui
