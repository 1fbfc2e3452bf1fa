#include "trial/SampleIcon.h"

#include <algorithm>
#include <cmath>

namespace brimvault::trial {

namespace {

constexpr int side = 48;
constexpr double edge = 2.4;    // the margin around the square
constexpr double corner = 9.6;  // the radius of its corners

std::string bigEndian(std::size_t value) {
    std::string bytes;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        bytes += static_cast<char>(value >> shift & 0xFFU);
    }
    return bytes;
}

std::string element(const std::string& kind, const std::string& contents) {
    return kind + bigEndian(contents.size() + 8) + contents;
}

// One value for every point, as runs of up to 130 points.
std::string everywhere(std::uint8_t value) {
    constexpr int longestRun = 130;
    std::string runs;
    for (int left = side * side; left > 0; left -= longestRun) {
        const int length = std::min(left, longestRun);
        runs += static_cast<char>(0x80 + length - 3);  // the format counts from a run of three
        runs += static_cast<char>(value);
    }
    return runs;
}

// How much of the point the square covers.
char coverage(int x, int y) {
    const auto outside = [](int place) {  // beyond the centres of the corners
        const double fromMiddle = std::abs(place + 0.5 - side / 2.0);
        return std::max(0.0, fromMiddle - (side / 2.0 - edge - corner));
    };
    const double distance = std::hypot(outside(x), outside(y));
    return static_cast<char>(std::lround(255 * std::clamp(corner + 0.5 - distance, 0.0, 1.0)));
}

}  // namespace

std::string SampleIcon::inColour(const Colour& colour) {
    std::string mask;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            mask += coverage(x, y);
        }
    }
    const auto points = everywhere(colour.red) + everywhere(colour.green) + everywhere(colour.blue);
    return element("icns", element("ih32", points) + element("h8mk", mask));
}

}  // namespace brimvault::trial
