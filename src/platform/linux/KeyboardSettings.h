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

/// The layouts that the user has enabled in the settings of the desktop that runs; where it keeps none, those of the
/// machine. Empty without either. Reads files; any thread.
[[nodiscard]] std::vector<KeyboardLayout> enabledKeyboardLayouts();

}  // namespace brimvault::platform
