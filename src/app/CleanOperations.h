#pragma once

#include "engine/removal/FCutter.h"

namespace brimvault::app {

/// What cleans each section; the remover, which outlives the table, removes what the user may not.
[[nodiscard]] engine::CleanTable cleanOperations(engine::PrivilegedRemover& remover);

}  // namespace brimvault::app
