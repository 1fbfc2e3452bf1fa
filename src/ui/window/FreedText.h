#pragma once

#include <QString>

#include "engine/FreedSpace.h"

namespace brimvault::ui {

/// What a clean has freed, in one line; empty if there is nothing to tell. Main thread.
[[nodiscard]] QString freedText(const engine::FreedSpace& space);

}  // namespace brimvault::ui
