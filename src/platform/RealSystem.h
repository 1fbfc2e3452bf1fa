#pragma once

#include "platform/System.h"

namespace brimvault::platform {

/// The system that the process really runs on; each system's folder holds its own.
[[nodiscard]] System realSystem();

}  // namespace brimvault::platform
