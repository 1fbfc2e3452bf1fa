#include "ui/window/MenuCommands.h"

#include "ui/list/FileListController.h"
#include "ui/sections/SectionFolders.h"
#include "ui/services/DefaultsKeys.h"

namespace brimvault::ui {

namespace {

// A reserved name that leads nowhere, until there is a mailbox.
QString supportRecipient() { return QStringLiteral("support@brimvault.example"); }

}  // namespace

MenuCommands::MenuCommands(MainWindow& window, TSectionViewController& sections, SectionPanels& panels,
                           DrawerAndSheets& drawerAndSheets, UtilMod& util, platform::UserDefaults& defaults)
    : window_(window),
      sections_(sections),
      panels_(panels),
      drawerAndSheets_(drawerAndSheets),
      util_(util),
      defaults_(defaults) {
    util_.history().setKept(isHistoryKept());
}

MenuItem MenuCommands::validateMenuItem(MenuAction what) const {
    const auto* current = panels_.getCurrentSectionController();
    const auto* files = qobject_cast<const FileListController*>(current);
    const bool selected = current != nullptr && current->hasSelectedItem();
    switch (what) {
        case MenuAction::doStartScan:
        case MenuAction::doStartClean:
            return sections_.validateMenuItem(what);
        case MenuAction::toggleSelectAll: {
            const auto* button = window_.lists()->pbtnSelectAll();
            return {button->text(), button->isVisible() && button->isEnabled()};
        }
        case MenuAction::toggleDrawer:
            return {tr("Languages to Keep"), drawerAndSheets_.isDrawerOffered()};
        case MenuAction::doSelShowInFinder:
            return {tr("Show in File Manager"), selected};
        case MenuAction::doSelGetInfo:
            return {tr("Show Information"), selected};
        case MenuAction::doSelMoveToTrash:
            return {tr("Move to Trash"), files != nullptr && files->isMoveToTrashEnabled()};
        case MenuAction::undoMoveToTrash:
            return {tr("Undo Move to Trash"), files != nullptr && files->isUndoMoveEnabled()};
        case MenuAction::doSelRemove:
            return {tr("Remove..."), files != nullptr && files->isRemoveEnabled()};
        case MenuAction::toggleAskBeforeCleaning:
            return {tr("Ask Before Cleaning"), true, sections_.isAskingBeforeCleaning()};
        case MenuAction::toggleKeepHistory:
            return {tr("Keep a History"), true, isHistoryKept()};
        case MenuAction::showHistory:
            return {tr("Show History")};
        case MenuAction::shareByMail:
            return {tr("By Mail...")};
        case MenuAction::sendFeedbackPressed:
            return {tr("Send Feedback...")};
        case MenuAction::showAboutScreen:
            return {tr("About Brimvault")};
        case MenuAction::quit:
            break;
    }
    return {tr("Quit")};
}

void MenuCommands::perform(MenuAction what) {
    switch (what) {
        case MenuAction::doStartScan:
            return sections_.doStartScan();
        case MenuAction::doStartClean:
            return sections_.doStartClean();
        case MenuAction::toggleSelectAll:
            return window_.lists()->pbtnSelectAll()->click();
        case MenuAction::toggleDrawer:
            return drawerAndSheets_.toggleDrawer();
        case MenuAction::doSelShowInFinder:
            return doSelShowInFinder();
        case MenuAction::doSelGetInfo:
            return doSelGetInfo();
        case MenuAction::doSelMoveToTrash:
            return doSelMoveToTrash();
        case MenuAction::undoMoveToTrash:
            return panels_.undoMove();
        case MenuAction::doSelRemove:
            return doSelRemove();
        case MenuAction::toggleAskBeforeCleaning:
            return sections_.setAskingBeforeCleaning(!sections_.isAskingBeforeCleaning());
        case MenuAction::toggleKeepHistory:
            return keepHistory(!isHistoryKept());
        case MenuAction::showHistory:
            return util_.showHistory();
        case MenuAction::shareByMail:
            return shareByMail();
        case MenuAction::sendFeedbackPressed:
            return sendFeedbackPressed();
        case MenuAction::showAboutScreen:
            return showAboutScreen();
        case MenuAction::quit:
            window_.close();
    }
}

bool MenuCommands::isHistoryKept() const { return defaults_.boolean(defaults_key::keepHistory).value_or(true); }

// What the history holds stays.
void MenuCommands::keepHistory(bool keep) {
    defaults_.setBoolean(defaults_key::keepHistory, keep);
    util_.history().setKept(keep);
}

void MenuCommands::doSelShowInFinder() {
    if (auto* current = panels_.getCurrentSectionController()) {
        current->onClickedRevealInFinder();
    }
}

void MenuCommands::doSelGetInfo() {
    if (auto* current = panels_.getCurrentSectionController()) {
        current->onClickedGetInfo();
    }
}

void MenuCommands::finderPressed() {
    const auto* current = panels_.getCurrentSectionController();
    if (current != nullptr && !current->hasSelectedItem()) {
        util_.openFirstFolder([section = current->section()] { return SectionFolders::of(section); });
    } else {
        doSelShowInFinder();
    }
}

void MenuCommands::infPressed() {
    const auto* current = panels_.getCurrentSectionController();
    if (current != nullptr && !current->hasSelectedItem()) {
        util_.getInformationOfFirstFolder([section = current->section()] { return SectionFolders::of(section); });
    } else {
        doSelGetInfo();
    }
}

// Nothing is removed singly from the list of Language Resources.
void MenuCommands::doSelRemove() {
    if (auto* current = qobject_cast<FileListController*>(panels_.getCurrentSectionController())) {
        current->onClickedRemove();
    }
}

void MenuCommands::doSelMoveToTrash() {
    if (auto* current = qobject_cast<FileListController*>(panels_.getCurrentSectionController())) {
        current->onClickedMoveToTrash();
    }
}

void MenuCommands::showAboutScreen() {
    if (m_aboutWC_ == nullptr || !m_aboutWC_->isVisible()) {
        m_aboutWC_ = new AboutWC(&window_);
        m_aboutWC_->show();
    }
    m_aboutWC_->raise();
    m_aboutWC_->activateWindow();
}

void MenuCommands::sendFeedbackPressed() {
    util_.composeMail({supportRecipient(), tr("Send FeedBack. Brimvault"),
                       tr("Thank you for using Brimvault.\n\nWhat would make it better? Every idea is welcome:\n\n")});
}

void MenuCommands::shareByMail() {
    util_.composeMail({{},
                       QStringLiteral("Brimvault"),
                       tr("Brimvault frees disk space: it shows what caches, unneeded languages, logs, downloads and "
                          "the trash hold, and removes what you tick.\n\n%1\n")
                           .arg(productPage())});
}

}  // namespace brimvault::ui
