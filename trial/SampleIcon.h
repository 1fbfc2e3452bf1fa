#pragma once

#include <cstdint>
#include <string>

namespace brimvault::trial {

/// The icon of a made-up application: a square with round corners in one colour.
class SampleIcon {
public:
    struct Colour {
        std::uint8_t red;
        std::uint8_t green;
        std::uint8_t blue;
    };

    /// The contents of an icns file with the icon in one size.
    [[nodiscard]] static std::string inColour(const Colour& colour);
};

}  // namespace brimvault::trial
