#pragma once

#include <QMenu>
#include <vector>

#include "ui/controls/IconButton.h"
#include "ui/window/MenuCommands.h"

namespace brimvault::ui {

/// The program's menu, opened from a button of the window or by F10. Titles and states of its
/// items are validated before it is shown and before a shortcut is followed. Main thread.
class MainMenu final : public QObject {
    Q_OBJECT

public:
    /// The window owns the menu; its shortcuts are the window's. The commands outlive it.
    MainMenu(QWidget* window, IconButton* button, MenuCommands& commands);

    [[nodiscard]] QMenu* menu() const { return menu_; }
    /// Brings titles and states up to date.
    void validateItems();
    void popUp();
    /// Closes it if it is open: its items are out of date, and the user must not choose one by mistake.
    void dismiss();
    /// Performs an action if it is enabled at the moment.
    void perform(MenuAction what);

private:
    struct Item {
        MenuAction what;
        QAction* action;
    };

    void add(QMenu* menu, MenuAction what, const QList<QKeySequence>& shortcuts = {});
    void enableShortcuts();

    QMenu* menu_;
    IconButton* button_;
    MenuCommands& commands_;
    std::vector<Item> items_;
};

}  // namespace brimvault::ui
