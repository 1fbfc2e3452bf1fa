#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace brimvault::platform {

/// The bytes of a percent-encoded text (RFC 3986); none where a "%" is not followed by two hexadecimal digits. Any
/// thread.
[[nodiscard]] std::optional<std::string> percentDecoded(std::string_view text);

}  // namespace brimvault::platform
