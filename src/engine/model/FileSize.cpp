#include "engine/model/FileSize.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <iterator>

#include "engine/model/FileManager.h"
#include "platform/text/DecimalText.h"

namespace brimvault::engine {

namespace {

constexpr double step = 1000.0;
constexpr const char* units[] = {"B", "KB", "MB", "GB", "TB", "PB"};
constexpr std::size_t lastUnit = std::size(units) - 1;

QString withUnit(const QString& number, std::size_t unit) {
    return number + QLatin1Char(' ') + QLatin1String(units[unit]);
}

// Rounds the binary value to the nearest, ties to the even digit.
QString whole(double value) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.begin(), text.end(), value, std::chars_format::fixed, 0).ptr;
    return QString::fromLatin1(text.data(), end - text.data());
}

}  // namespace

QString FileSize::formatMemoryStringDot0(quint64 bytes) {
    if (bytes < 1000) {
        return withUnit(QString::number(bytes), 0);
    }
    constexpr std::size_t terabytes = 4;  // the largest unit of this form
    double value = static_cast<double>(bytes) / step;
    std::size_t unit = 1;
    for (; value >= step && unit < terabytes; ++unit) {
        value /= step;
    }
    return withUnit(whole(value), unit);
}

QString FileSize::formatMemoryStringDot1(quint64 bytes) {
    double value = static_cast<double>(bytes);
    std::size_t thousands = 0;
    while (value >= step && thousands <= lastUnit) {
        value /= step;
        ++thousands;
    }
    constexpr double twoDecimalsBelow = 100.0;
    const QString text =
        value < twoDecimalsBelow ? platform::withAtMostTwoDecimals(value) : platform::withAtMostOneDecimal(value);
    return text.isEmpty() ? text : withUnit(text, std::min(thousands, lastUnit));
}

QString FileSize::getDisplayNameAtPath(const std::filesystem::path& path) {
    return FileManager::displayNameAtPath(path);
}

}  // namespace brimvault::engine
