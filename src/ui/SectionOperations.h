#pragma once

#include "engine/FCutter.h"
#include "engine/FScaner.h"

namespace brimvault::ui {

/// What scans each section of the program, and what cleans it.
[[nodiscard]] engine::ScanTable scanOperations();
[[nodiscard]] engine::CleanTable cleanOperations();

}  // namespace brimvault::ui
