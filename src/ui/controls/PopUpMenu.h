#pragma once

#include <QMenu>

namespace brimvault::ui {

/// Shows a menu with the corner at which its lines begin at a place of the screen; Qt's own begins at the left whatever
/// the direction. Main thread.
inline void popUp(QMenu& menu, const QPoint& globalCorner) {
    menu.popup(menu.isRightToLeft() ? globalCorner - QPoint(menu.sizeHint().width(), 0) : globalCorner);
}

}  // namespace brimvault::ui
