#pragma once

#include <filesystem>

namespace brimvault::langres {

/// Whether a folder of this name holds a localization: its extension ends in "lproj", in any letter case, and it is not
/// "Base", which holds what all languages share. Any thread.
[[nodiscard]] bool isLocalizationName(const std::filesystem::path& name);

}  // namespace brimvault::langres
