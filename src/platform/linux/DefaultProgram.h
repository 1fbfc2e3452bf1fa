#pragma once

#include <functional>
#include <string>

namespace brimvault::platform {

/// Has the desktop's default program open what an escaped URI names. YES once it has, or has not failed within a few
/// seconds; NO without a desktop that knows default programs, and once it is not wanted any more. Any thread but the
/// main one.
[[nodiscard]] bool openWithDefaultProgram(const std::string& uri, const std::function<bool()>& isGivenUp);

}  // namespace brimvault::platform
