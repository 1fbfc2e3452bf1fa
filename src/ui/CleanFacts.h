#pragma once

#include "engine/DataMan.h"
#include "ui/AlertPresenter.h"

namespace brimvault::ui {

/// What a clean of the sections that are ticked would remove, as the question tells it. Main thread.
[[nodiscard]] Alert::Facts cleanFacts(const engine::DataMan& model, const engine::PerSection<bool>& ticked);

}  // namespace brimvault::ui
