#pragma once

#include <QString>

/// The widgets that are given their look by a style sheet.
namespace brimvault::ui::styleSheets {

/// A vertical scroll bar: a quiet handle on the ground of the list, without arrow buttons.
[[nodiscard]] inline QString scrollBar() {
    return QStringLiteral(
        "QScrollBar:vertical { background: transparent; width: 12px; border: none; margin: 0; }"
        "QScrollBar::handle:vertical { background: #aebbcb; border-radius: 4px; min-height: 32px; margin: 2px; }"
        "QScrollBar::handle:vertical:hover { background: #7a8798; }"
        "QScrollBar::add-line:vertical, QScrollBar::sub-line:vertical { height: 0; }"
        "QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical { background: none; }");
}

/// A menu as roomy as the rest of the window. One with shortcuts is wider, so that these keep apart from the titles.
[[nodiscard]] inline QString menu() {
    return QStringLiteral(
        "QMenu { background: #ffffff; border: 1px solid #d5dde8; padding: 5px; }"
        "QMenu::item { padding: 6px 32px 6px 14px; border-radius: 6px; color: #1b2430; }"
        "QMenu::item:selected { background: #2a6ae4; color: #ffffff; }"
        "QMenu::item:disabled { background: transparent; color: #586678; }"
        "QMenu::separator { height: 1px; background: #dde4ec; margin: 5px 8px; }");
}

}  // namespace brimvault::ui::styleSheets
