#pragma once

#include "engine/removal/FCutter.h"

namespace brimvault::app {

/// What cleans each section; the remover removes what the user may not. Both outlive the table.
[[nodiscard]] engine::CleanTable cleanOperations(engine::PrivilegedRemover& remover,
                                                 engine::RemovalHistory& history = engine::RemovalHistory::none());

}  // namespace brimvault::app
