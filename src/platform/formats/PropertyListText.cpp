#include "platform/formats/PropertyListText.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <string_view>

namespace brimvault::platform {

namespace {

constexpr std::size_t maxKeys = 1000;
constexpr char32_t replacementCharacter = 0xFFFD;

bool isSpace(char letter) { return std::isspace(static_cast<unsigned char>(letter)) != 0; }

// The characters of an unquoted string.
bool isPlain(char letter) {
    return std::isalnum(static_cast<unsigned char>(letter)) != 0 ||
           (letter != '\0' && std::string_view("_.$/:-").find(letter) != std::string_view::npos);
}

// Parses up to `maxCount` digits.
std::optional<char32_t> digits(const std::string& contents, std::size_t& place, char32_t base, int maxCount) {
    std::optional<char32_t> value;
    for (int count = 0; count < maxCount && place < contents.size(); ++count, ++place) {
        const auto letter = static_cast<unsigned char>(contents[place]);
        if (std::isxdigit(letter) == 0) {
            break;
        }
        const int digit = std::isdigit(letter) != 0 ? letter - '0' : std::tolower(letter) - 'a' + 10;
        if (static_cast<char32_t>(digit) >= base) {
            break;
        }
        value = value.value_or(0) * base + static_cast<char32_t>(digit);
    }
    return value;
}

// For a UTF-16 code unit; a surrogate becomes U+FFFD.
void appendUtf8(std::string& text, char32_t character) {
    if (character == 0 || (character >= 0xD800 && character <= 0xDFFF)) {
        character = replacementCharacter;
    }
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xC0U | character >> 6U);
        text += static_cast<char>(0x80U | (character & 0x3FU));
    } else {
        text += static_cast<char>(0xE0U | character >> 12U);
        text += static_cast<char>(0x80U | (character >> 6U & 0x3FU));
        text += static_cast<char>(0x80U | (character & 0x3FU));
    }
}

// One pass without recursion, so that deep nesting cannot exhaust the stack.
class Parser {
public:
    explicit Parser(const std::string& contents) : contents_(contents) {}

    [[nodiscard]] std::optional<std::vector<std::pair<std::string, std::string>>> parse() {
        std::vector<std::pair<std::string, std::string>> found;
        if (!take('{')) {
            return std::nullopt;
        }
        while (!take('}')) {
            auto key = text();
            if (!key || !take('=') || found.size() == maxKeys) {
                return std::nullopt;
            }
            auto value = text();
            if (!value && !skipValue()) {
                return std::nullopt;
            }
            if (value) {
                found.emplace_back(std::move(*key), std::move(*value));
            }
            if (!take(';') && next() != '}') {
                return std::nullopt;
            }
        }
        return next() == '\0' ? std::optional(std::move(found)) : std::nullopt;
    }

private:
    // NUL at the end; elsewhere a NUL is no valid character.
    [[nodiscard]] char here() const { return place_ < contents_.size() ? contents_[place_] : '\0'; }

    // Skips whitespace and comments.
    char next() {
        for (;;) {
            while (place_ < contents_.size() && isSpace(contents_[place_])) {
                ++place_;
            }
            if (contents_.compare(place_, 2, "//") == 0) {
                place_ = std::min(contents_.find('\n', place_), contents_.size());
            } else if (contents_.compare(place_, 2, "/*") == 0) {
                const auto end = contents_.find("*/", place_ + 2);
                place_ = end == std::string::npos ? contents_.size() : end + 2;
            } else {
                return here();
            }
        }
    }

    bool take(char wanted) {
        if (next() != wanted) {
            return false;
        }
        ++place_;
        return true;
    }

    std::optional<std::string> text() {
        if (take('"')) {
            return quoted();
        }
        const auto first = place_;
        while (isPlain(here())) {
            ++place_;
        }
        return place_ > first ? std::optional(contents_.substr(first, place_ - first)) : std::nullopt;
    }

    std::optional<std::string> quoted() {
        std::string value;
        while (place_ < contents_.size()) {
            const char letter = contents_[place_++];
            if (letter == '"') {
                return value;
            }
            if (letter == '\\') {
                appendEscaped(value);
            } else {
                value += letter;
            }
        }
        return std::nullopt;
    }

    void appendEscaped(std::string& value) {
        if (here() == 'U' || here() == 'u') {
            ++place_;
            appendUtf8(value, digits(contents_, place_, 16, 4).value_or(replacementCharacter));
        } else if (const auto octal = digits(contents_, place_, 8, 3)) {
            appendUtf8(value, *octal);
        } else if (place_ < contents_.size()) {
            const char letter = contents_[place_++];
            value += letter == 'n' ? '\n' : letter == 't' ? '\t' : letter == 'r' ? '\r' : letter;
        }
    }

    // Skips a dictionary, an array or data by its brackets.
    bool skipValue() {
        std::size_t open = 0;
        do {
            const char letter = next();
            const bool opens = letter == '{' || letter == '(' || letter == '<';
            if (letter == '\0' || (open == 0 && !opens)) {
                return false;
            }
            if (letter == '"' || isPlain(letter)) {
                if (!text()) {
                    return false;
                }
                continue;
            }
            open += opens ? 1 : 0;
            open -= letter == '}' || letter == ')' || letter == '>' ? 1 : 0;
            ++place_;
        } while (open > 0);
        return true;
    }

    const std::string& contents_;
    std::size_t place_ = 0;
};

}  // namespace

std::optional<std::vector<std::pair<std::string, std::string>>> textsOfPropertyListText(const std::string& contents) {
    return Parser(contents).parse();
}

}  // namespace brimvault::platform
