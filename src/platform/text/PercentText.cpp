#include "platform/text/PercentText.h"

#include <charconv>

namespace brimvault::platform {

std::optional<std::string> percentDecoded(std::string_view text) {
    constexpr std::size_t digits = 2;
    constexpr int hexadecimal = 16;
    std::string bytes;
    while (!text.empty()) {
        const char first = text.front();
        text.remove_prefix(1);
        if (first != '%') {
            bytes.push_back(first);
            continue;
        }
        unsigned value = 0;
        const char* const end = text.data() + digits;
        if (text.size() < digits || std::from_chars(text.data(), end, value, hexadecimal).ptr != end) {
            return std::nullopt;
        }
        bytes.push_back(static_cast<char>(value));
        text.remove_prefix(digits);
    }
    return bytes;
}

}  // namespace brimvault::platform
