#include "cleaner-tool/Invocation.h"

#include <charconv>
#include <limits>
#include <string_view>

#include "cleaner-tool/protocol/SocketPath.h"

namespace brimvault::cleaner {

namespace {

// Parses decimal digits and nothing else, up to the maximum of the type; 0 is refused.
template <typename Number>
std::optional<Number> positiveNumber(const char* text) {
    const std::string_view digits = text == nullptr ? "" : text;
    Number number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const bool whole = error == std::errc() && end == digits.data() + digits.size();
    return whole && number > 0 ? std::optional(number) : std::nullopt;
}

}  // namespace

std::optional<Invocation> Invocation::of(int count, const char* const* arguments, const char* user) {
    constexpr int expected = 3;  // with the name of the program itself
    if (count != expected || !isSocketName(arguments[1])) {
        return std::nullopt;
    }
    const auto application = positiveNumber<pid_t>(arguments[2]);
    const auto userNumber = positiveNumber<uid_t>(user);
    if (!application || !userNumber || *userNumber == std::numeric_limits<uid_t>::max()) {
        return std::nullopt;
    }
    return Invocation{arguments[1], *application, *userNumber};
}

}  // namespace brimvault::cleaner
