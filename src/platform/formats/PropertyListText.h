#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace brimvault::platform {

/// The texts of a property list in the oldest of its forms, `{ key = value; ... }`, which some applications still
/// carry: the outermost dictionary's keys and values, in UTF-8, as far as a value is a text; what else it holds is
/// passed over. None where the contents are not of this form, or have more than a thousand keys. Any thread.
[[nodiscard]] std::optional<std::vector<std::pair<std::string, std::string>>> textsOfPropertyListText(
    const std::string& contents);

}  // namespace brimvault::platform
