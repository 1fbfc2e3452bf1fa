#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace brimvault::platform {

/// Whether the bytes are UTF-8 from beginning to end. Any thread.
[[nodiscard]] bool isUtf8(std::string_view bytes);
/// The bytes with "%XX" for each "%" and for each that is not part of valid UTF-8: what is left is UTF-8. Any thread.
[[nodiscard]] std::string percentEncoded(std::string_view bytes);
/// The bytes of a percent-encoded text (RFC 3986); none where a "%" is not followed by two hexadecimal digits. Any
/// thread.
[[nodiscard]] std::optional<std::string> percentDecoded(std::string_view text);

}  // namespace brimvault::platform
