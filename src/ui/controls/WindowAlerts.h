#pragma once

#include "ui/controls/AlertPresenter.h"

namespace brimvault::ui {

/// Asks with an AlertWindow over the window.
class WindowAlerts final : public AlertPresenter {
public:
    AlertAnswer runModal(const Alert& alert, QWidget* window) override;
};

}  // namespace brimvault::ui
