#include "ui/window/MainMenu.h"

#include <QAction>

#include "ui/look/Look.h"
#include "ui/look/StyleSheets.h"

namespace brimvault::ui {

namespace {

constexpr int minWidth = 250;  // points

}  // namespace

MainMenu::MainMenu(QWidget* window, IconButton* button, MenuCommands& commands)
    : menu_(new QMenu(window)), button_(button), commands_(commands) {
    button_->setOpensMenu();
    menu_->setStyleSheet(styleSheets::menu() +
                         QStringLiteral("QMenu::item { min-width: %1px; }").arg(look::scaled(minWidth)));
    add(menu_, MenuAction::doStartScan, {QKeySequence(Qt::CTRL | Qt::Key_R), QKeySequence(Qt::Key_F5)});
    add(menu_, MenuAction::doStartClean, {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Delete)});
    menu_->addSeparator();
    add(menu_, MenuAction::toggleSelectAll, {QKeySequence(QKeySequence::SelectAll)});
    add(menu_, MenuAction::toggleDrawer, {QKeySequence(Qt::CTRL | Qt::Key_L)});
    menu_->addSeparator();
    add(menu_, MenuAction::doSelShowInFinder, {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_R)});
    add(menu_, MenuAction::doSelGetInfo, {QKeySequence(Qt::CTRL | Qt::Key_I)});
    // The keys of these two are the list's own: elsewhere they would take away what is out of sight.
    add(menu_, MenuAction::doSelMoveToTrash);
    add(menu_, MenuAction::doSelRemove);
    add(menu_, MenuAction::undoMoveToTrash, {QKeySequence(QKeySequence::Undo)});
    menu_->addSeparator();
    add(menu_, MenuAction::toggleAskBeforeCleaning);
    menu_->addSeparator();
    add(menu_, MenuAction::toggleKeepHistory);
    add(menu_, MenuAction::showHistory);
    menu_->addSeparator();
    auto* share = menu_->addMenu(tr("Share"));
    share->setStyleSheet(styleSheets::menu());
    add(share, MenuAction::shareByMail);
    add(menu_, MenuAction::sendFeedbackPressed);
    add(menu_, MenuAction::showAboutScreen);
    menu_->addSeparator();
    add(menu_, MenuAction::quit, {QKeySequence(Qt::CTRL | Qt::Key_Q)});

    auto* open = new QAction(window);
    open->setShortcut(QKeySequence(Qt::Key_F10));
    window->addAction(open);
    connect(open, &QAction::triggered, this, &MainMenu::popUp);
    connect(button_, &QAbstractButton::clicked, this, &MainMenu::popUp);
    connect(menu_, &QMenu::aboutToShow, this, &MainMenu::validateItems);
    connect(menu_, &QMenu::aboutToHide, this, &MainMenu::enableShortcuts);
}

void MainMenu::add(QMenu* menu, MenuAction what, const QList<QKeySequence>& shortcuts) {
    const MenuItem item = commands_.validateMenuItem(what);
    auto* action = menu->addAction(item.title);
    action->setCheckable(item.checked.has_value());
    action->setShortcuts(shortcuts);
    if (what == MenuAction::quit) {
        action->setMenuRole(QAction::QuitRole);
    }
    menu_->parentWidget()->addAction(action);
    connect(action, &QAction::triggered, this, [this, what] { perform(what); });
    items_.push_back({what, action});
}

void MainMenu::validateItems() {
    for (const auto& item : items_) {
        const MenuItem now = commands_.validateMenuItem(item.what);
        item.action->setText(now.title);
        item.action->setEnabled(now.enabled);
        item.action->setChecked(now.checked.value_or(false));
    }
}

// Qt follows a shortcut only for an enabled action; `perform` decides whether it may be done.
void MainMenu::enableShortcuts() {
    for (const auto& item : items_) {
        item.action->setEnabled(true);
    }
}

void MainMenu::perform(MenuAction what) {
    if (commands_.validateMenuItem(what).enabled) {
        commands_.perform(what);
    }
}

void MainMenu::dismiss() {
    for (auto* part : menu_->findChildren<QMenu*>()) {
        part->close();
    }
    menu_->close();
}

void MainMenu::popUp() {
    const int left = button_->isRightToLeft() ? button_->width() - menu_->sizeHint().width() : 0;
    menu_->popup(button_->mapToGlobal(QPoint(left, button_->height() + 2)));
    menu_->setActiveAction(items_.front().action);
}

}  // namespace brimvault::ui
