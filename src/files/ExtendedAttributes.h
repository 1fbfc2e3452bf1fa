#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace brimvault::files {

/// The bytes of an extended attribute; empty when it is absent, empty or cannot be read. A link is asked itself. The
/// name is a program's own, without the prefix that a system keeps for such names. Any thread.
[[nodiscard]] std::string extendedAttribute(const std::filesystem::path& path, const std::string& name);

/// The names of all extended attributes, as `extendedAttribute` takes them; names that belong to the system keep their
/// prefix. Empty when there are none or they cannot be read. Any thread.
[[nodiscard]] std::vector<std::string> extendedAttributeNames(const std::filesystem::path& path);

}  // namespace brimvault::files
