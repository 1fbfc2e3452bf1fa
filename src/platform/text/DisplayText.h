#pragma once

#include <QString>
#include <filesystem>

namespace brimvault::platform {

/// A path or a file name as text for one line: bytes that are not UTF-8, line breaks, control characters and those that
/// change the direction of text become U+FFFD. Never to be used as a path again. Any thread.
[[nodiscard]] QString displayText(const std::filesystem::path& path);

}  // namespace brimvault::platform
