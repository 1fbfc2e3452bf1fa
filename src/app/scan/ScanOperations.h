#pragma once

#include "engine/operations/FScaner.h"

namespace brimvault::app {

/// What scans each section of the program.
[[nodiscard]] engine::ScanTable scanOperations();

}  // namespace brimvault::app
