#pragma once

#include "engine/operations/FCutter.h"
#include "engine/operations/FScaner.h"

namespace brimvault::app {

/// What scans each section of the program.
[[nodiscard]] engine::ScanTable scanOperations();
/// What cleans each section; what the user may not remove, the remover is asked to. It outlives the table.
[[nodiscard]] engine::CleanTable cleanOperations(engine::PrivilegedRemover& remover);

}  // namespace brimvault::app
