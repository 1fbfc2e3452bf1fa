#pragma once

#include <QString>

#include "ui/look/Look.h"

/// The style sheets of widgets that Qt draws.
namespace brimvault::ui::styleSheets {

[[nodiscard]] inline QString colour(QRgb color) { return QColor(color).name(); }

/// A vertical scroll bar: a handle on the ground of the list, without arrow buttons.
[[nodiscard]] inline QString scrollBar() {
    return QStringLiteral(
               "QScrollBar:vertical { background: transparent; width: 12px; border: none; margin: 0; }"
               "QScrollBar::handle:vertical { background: %1; border-radius: 4px; min-height: 32px; margin: 2px; }"
               "QScrollBar::handle:vertical:hover { background: %2; }"
               "QScrollBar::add-line:vertical, QScrollBar::sub-line:vertical { height: 0; }"
               "QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical { background: none; }")
        .arg(colour(look::scrollHandle), colour(look::scrollHandleHovered));
}

/// A menu with the spacing of the rest of the window. The right padding keeps shortcuts apart from the titles.
[[nodiscard]] inline QString menu() {
    return QStringLiteral(
               "QMenu { background: %1; border: 1px solid %2; padding: 5px; }"
               "QMenu::item { padding: 6px 32px 6px 14px; border-radius: 6px; color: %3; }"
               "QMenu::item:selected { background: %4; color: %5; }"
               "QMenu::item:disabled { background: transparent; color: %6; }"
               "QMenu::separator { height: 1px; background: %7; margin: 5px 8px; }")
        .arg(colour(look::row), colour(look::separator), colour(look::textPrimary), colour(look::selection),
             colour(look::textOnAccent), colour(look::textDisabled), colour(look::headerLine));
}

}  // namespace brimvault::ui::styleSheets
