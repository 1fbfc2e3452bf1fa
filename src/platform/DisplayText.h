#pragma once

#include <QString>
#include <filesystem>

namespace brimvault::platform {

/// A path or a file name made fit to be shown on one line: bytes that are no UTF-8 and characters that are not to be
/// seen (line breaks, controls, marks that turn the direction of the text) become U+FFFD. Never to be used as a path
/// again. Any thread.
[[nodiscard]] QString displayText(const std::filesystem::path& path);

}  // namespace brimvault::platform
