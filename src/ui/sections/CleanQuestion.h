#pragma once

#include "engine/model/DataMan.h"
#include "ui/controls/AlertPresenter.h"

namespace brimvault::ui {

/// The question before a clean of the sections that are ticked, with what would go. It has a warning if something that
/// carries a note would go. Main thread.
[[nodiscard]] Alert cleanQuestion(const engine::DataMan& model, const engine::PerSection<bool>& ticked);

}  // namespace brimvault::ui
