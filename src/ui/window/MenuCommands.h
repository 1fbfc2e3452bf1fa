#pragma once

#include <QObject>
#include <QPointer>

#include "ui/sections/TSectionViewController.h"
#include "ui/services/MenuAction.h"
#include "ui/window/AboutWC.h"
#include "ui/window/DrawerAndSheets.h"
#include "ui/window/MainWindow.h"
#include "ui/window/SectionPanels.h"

namespace brimvault::ui {

/// The actions of the menus: when each is enabled, and what performs it. Main thread.
class MenuCommands final : public QObject {
    Q_OBJECT

public:
    /// All of them must outlive this object.
    MenuCommands(MainWindow& window, TSectionViewController& sections, SectionPanels& panels,
                 DrawerAndSheets& drawerAndSheets, UtilMod& util, platform::UserDefaults& defaults);

    /// How a menu is to show the action at the moment.
    [[nodiscard]] MenuItem validateMenuItem(MenuAction what) const;
    void perform(MenuAction what);

    /// What is done to the selected item of the list on show.
    void doSelShowInFinder();
    void doSelGetInfo();
    void doSelMoveToTrash();
    void doSelRemove();
    /// The two buttons above a list: the same for its selected item; without one, for the section's own folder.
    void finderPressed();
    void infPressed();

    /// The help items: the about window, a mail to the makers, a mail to friends.
    void showAboutScreen();
    void sendFeedbackPressed();
    void shareByMail();

private:
    [[nodiscard]] bool isHistoryKept() const;
    void keepHistory(bool keep);

    MainWindow& window_;
    TSectionViewController& sections_;
    SectionPanels& panels_;
    DrawerAndSheets& drawerAndSheets_;
    UtilMod& util_;
    platform::UserDefaults& defaults_;
    QPointer<AboutWC> m_aboutWC_;  ///< while it is open
};

}  // namespace brimvault::ui
