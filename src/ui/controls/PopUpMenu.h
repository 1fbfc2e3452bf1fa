#pragma once

#include <QMenu>

#include "ui/look/StyleSheets.h"

namespace brimvault::ui {

/// A menu in the window's look that deletes itself when it is closed. Main thread.
[[nodiscard]] inline QMenu* makePopUpMenu(QWidget* parent) {
    auto* menu = new QMenu(parent);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setStyleSheet(styleSheets::menu());
    return menu;
}

/// Opens a menu with its leading corner at a place of the screen; QMenu::popup always takes the left corner. Main
/// thread.
inline void popUp(QMenu& menu, const QPoint& globalCorner) {
    menu.popup(menu.isRightToLeft() ? globalCorner - QPoint(menu.sizeHint().width(), 0) : globalCorner);
}

}  // namespace brimvault::ui
