#include "platform/text/PathBytes.h"

#include <QUtf8StringView>
#include <algorithm>
#include <charconv>
#include <cstddef>

namespace brimvault::platform {

namespace {

// The length of the character that the bytes begin with; 0 if they begin with none.
std::size_t lengthOfCharacter(std::string_view bytes) {
    constexpr std::size_t maxLength = 4;
    for (std::size_t length = 1; length <= std::min(maxLength, bytes.size()); ++length) {
        if (isUtf8(bytes.substr(0, length))) {
            return length;
        }
    }
    return 0;
}

}  // namespace

bool isUtf8(std::string_view bytes) {
    return QUtf8StringView(bytes.data(), static_cast<qsizetype>(bytes.size())).isValidUtf8();
}

std::string percentEncoded(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string encoded;
    while (!bytes.empty()) {
        const auto length = lengthOfCharacter(bytes);
        if (length == 0 || bytes.front() == '%') {
            const auto value = static_cast<unsigned char>(bytes.front());
            encoded += {'%', digits[value / 16U], digits[value % 16U]};
        } else {
            encoded += bytes.substr(0, length);
        }
        bytes.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return encoded;
}

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
