#include "platform/text/JsonString.h"

namespace brimvault::platform {

std::string jsonString(std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string result = "\"";
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        if (code < 0x20) {
            result += "\\u00";
            result += {digits[code / 16U], digits[code % 16U]};
        } else {
            if (character == '"' || character == '\\') {
                result += '\\';
            }
            result += character;
        }
    }
    return result + '"';
}

}  // namespace brimvault::platform
