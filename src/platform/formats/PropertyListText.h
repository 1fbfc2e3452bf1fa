#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace brimvault::platform {

/// Parses a property list in the old text form, `{ key = value; ... }`, which some applications still have: the keys
/// and strings of the root dictionary, in UTF-8; values of other types are skipped. None where the contents are not of
/// this form, or have more than a thousand keys. Any thread.
[[nodiscard]] std::optional<std::vector<std::pair<std::string, std::string>>> textsOfPropertyListText(
    const std::string& contents);

}  // namespace brimvault::platform
