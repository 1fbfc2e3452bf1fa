#pragma once

#include <string>
#include <string_view>

namespace brimvault::platform {

/// UTF-8 as a string of JSON, with its quotation marks. Any thread.
[[nodiscard]] std::string jsonString(std::string_view text);

}  // namespace brimvault::platform
