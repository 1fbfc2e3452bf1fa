#pragma once

#include <stop_token>
#include <string>

namespace brimvault::platform {

/// Opens what an escaped URI names with the desktop's default program. True once that has succeeded, or has not failed
/// within a few seconds; false without a desktop that knows default programs, and after a stop, which ends the wait at
/// once. Any thread but the main one.
[[nodiscard]] bool openWithDefaultProgram(const std::string& uri, const std::stop_token& stop);

}  // namespace brimvault::platform
