#pragma once

#include <string>
#include <vector>

namespace brimvault::platform {

/// A keyboard layout as the X keyboard extension names it: "de", or "ch" with the variant "fr".
struct KeyboardLayout {
    std::string name;
    std::string variant;  ///< empty for none
    bool operator==(const KeyboardLayout&) const = default;
};

/// With what the user types.
struct InputSettings {
    std::vector<KeyboardLayout> layouts;
    std::vector<std::string> engines;  ///< names of input methods, for languages that no keyboard holds
};

/// What the user has enabled in the settings of the desktop that runs; where it keeps no layouts, those of the machine.
/// Empty without either. Reads files; any thread.
[[nodiscard]] InputSettings enabledInputSettings();

}  // namespace brimvault::platform
