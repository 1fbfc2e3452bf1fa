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

/// What the user types with.
struct InputSettings {
    std::vector<KeyboardLayout> layouts;
    std::vector<std::string> engines;  ///< names of input methods, for scripts with more characters than a keyboard
};

/// What the user has enabled in the settings of the running desktop; the layouts of the machine as a fallback. Empty
/// without either. Reads files; any thread.
[[nodiscard]] InputSettings enabledInputSettings();

}  // namespace brimvault::platform
