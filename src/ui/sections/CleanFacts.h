#pragma once

#include "engine/model/DataMan.h"
#include "ui/controls/AlertPresenter.h"

namespace brimvault::ui {

/// What a clean of the sections that are ticked would remove, as the question lists it. Main thread.
[[nodiscard]] Alert::Facts cleanFacts(const engine::DataMan& model, const engine::PerSection<bool>& ticked);

}  // namespace brimvault::ui
