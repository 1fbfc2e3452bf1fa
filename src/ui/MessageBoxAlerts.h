#pragma once

#include "ui/AlertPresenter.h"

namespace brimvault::ui {

/// Asks with a message box over the window.
class MessageBoxAlerts final : public AlertPresenter {
public:
    AlertAnswer runModal(const Alert& alert, QWidget* window) override;
};

}  // namespace brimvault::ui
