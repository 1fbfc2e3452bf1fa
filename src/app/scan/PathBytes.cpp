#include "app/scan/PathBytes.h"

#include <algorithm>
#include <cstddef>

namespace brimvault::app {

namespace {

// By the table of well-formed sequences of the Unicode Standard: the first byte allows a range for the second.
struct Sequence {
    std::size_t length;
    unsigned char minSecond;
    unsigned char maxSecond;
};

Sequence sequenceAfter(unsigned char first) {
    if (first < 0x80) {
        return {1, 0, 0};
    }
    if (first >= 0xC2 && first <= 0xDF) {
        return {2, 0x80, 0xBF};
    }
    if (first >= 0xE0 && first <= 0xEF) {
        return {3, static_cast<unsigned char>(first == 0xE0 ? 0xA0 : 0x80),
                static_cast<unsigned char>(first == 0xED ? 0x9F : 0xBF)};
    }
    if (first >= 0xF0 && first <= 0xF4) {
        return {4, static_cast<unsigned char>(first == 0xF0 ? 0x90 : 0x80),
                static_cast<unsigned char>(first == 0xF4 ? 0x8F : 0xBF)};
    }
    return {0, 0, 0};
}

// The length of the character that the bytes begin with; 0 if they begin with none.
std::size_t lengthOfCharacter(std::string_view bytes) {
    const auto isBetween = [](char byte, unsigned char min, unsigned char max) {
        const auto value = static_cast<unsigned char>(byte);
        return value >= min && value <= max;
    };
    const auto [length, minSecond, maxSecond] = sequenceAfter(static_cast<unsigned char>(bytes.front()));
    if (length <= 1) {
        return length;
    }
    const bool isWhole = bytes.size() >= length && isBetween(bytes[1], minSecond, maxSecond) &&
                         std::all_of(bytes.begin() + 2, bytes.begin() + static_cast<std::ptrdiff_t>(length),
                                     [&](char byte) { return isBetween(byte, 0x80, 0xBF); });
    return isWhole ? length : 0;
}

}  // namespace

bool isUtf8(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto length = lengthOfCharacter(bytes);
        if (length == 0) {
            return false;
        }
        bytes.remove_prefix(length);
    }
    return true;
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

}  // namespace brimvault::app
