#pragma once

#include "engine/FScaner.h"

namespace brimvault::ui {

/// The scan of each section, as the program offers them; a section without one is not scanned.
[[nodiscard]] engine::ScanTable scanOperations();

}  // namespace brimvault::ui
