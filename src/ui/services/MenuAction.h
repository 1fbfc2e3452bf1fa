#pragma once

#include <QString>
#include <optional>

namespace brimvault::ui {

/// The actions that the menus offer.
enum class MenuAction {
    doStartScan,
    doStartClean,
    toggleSelectAll,
    toggleDrawer,
    doSelShowInFinder,
    doSelGetInfo,
    doSelMoveToTrash,
    doSelRemove,
    undoMoveToTrash,
    toggleAskBeforeCleaning,
    toggleKeepHistory,
    showHistory,
    shareByMail,
    sendFeedbackPressed,
    showAboutScreen,
    quit
};

/// How a menu shows one of its items at the moment.
struct MenuItem {
    QString title;
    bool enabled = true;
    std::optional<bool> checked{};  ///< of what can be on or off
};

}  // namespace brimvault::ui
