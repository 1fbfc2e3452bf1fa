#pragma once

#include <QObject>

#include "ui/report/NotCleanedController.h"
#include "ui/window/MainWindow.h"

namespace brimvault::ui {

/// The drawer of the languages and the sheets of the window, which are never open together: a sheet waits until the
/// drawer has closed, and the drawer opens again after the sheet. The window and the report outlive it. Main thread.
class DrawerAndSheets final : public QObject {
    Q_OBJECT

public:
    DrawerAndSheets(MainWindow& window, NotCleanedController& report);

    /// The languages belong to one section. Elsewhere their drawer is closed, and opens again where the user left it
    /// open.
    void updateButtonsForPanel(int row);
    /// The user opens or closes the drawer.
    void toggleDrawer();
    [[nodiscard]] bool isDrawerOffered() const { return !window_.pbtnLangs()->isHidden(); }

    void willModalSheetBegin(const QObject* sender);
    /// The row of the section that is selected then.
    void didModalSheetEnd(int row);

private:
    void setDrawerOpen(bool open);
    void drawerDidClose();

    MainWindow& window_;
    NotCleanedController& report_;
    const QObject* modalSheetSender_ = nullptr;  ///< asked for a sheet while the drawer was open
    bool focusWasInDrawer_ = false;              ///< when the drawer closed for the sheet
    bool bDrawerOpened_ = false;                 ///< the user wants the drawer open
};

}  // namespace brimvault::ui
