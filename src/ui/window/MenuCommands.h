#pragma once

#include <QObject>

#include "ui/sections/TSectionViewController.h"
#include "ui/services/MenuAction.h"
#include "ui/window/DrawerAndSheets.h"
#include "ui/window/HelpActions.h"
#include "ui/window/MainWindow.h"
#include "ui/window/SectionPanels.h"

namespace brimvault::ui {

/// What the menus offer: when each action may be sent, and to whom it goes. Main thread.
class MenuCommands final : public QObject {
    Q_OBJECT

public:
    /// All of them outlive it.
    MenuCommands(MainWindow& window, TSectionViewController& sections, SectionPanels& panels,
                 DrawerAndSheets& drawerAndSheets, UtilMod& util)
        : window_(window),
          sections_(sections),
          panels_(panels),
          drawerAndSheets_(drawerAndSheets),
          util_(util),
          help_(&window, util) {}

    /// How a menu is to show the action, as things stand.
    [[nodiscard]] MenuItem validateMenuItem(MenuAction what) const;
    void perform(MenuAction what);

    /// What is done to the selected item of the list on show.
    void doSelShowInFinder();
    void doSelGetInfo();
    void doSelRemove();
    /// The two buttons above a list: the same for its selected item; without one, for the section's own folder.
    void finderPressed();
    void infPressed();

private:
    MainWindow& window_;
    TSectionViewController& sections_;
    SectionPanels& panels_;
    DrawerAndSheets& drawerAndSheets_;
    UtilMod& util_;
    HelpActions help_;
};

}  // namespace brimvault::ui
