#pragma once

#include <filesystem>

namespace brimvault::langres {

/// Whether a folder of this name holds a localization: its extension ends in "lproj", in any letter case, and it is not
/// "Base", which all languages share. Any thread.
[[nodiscard]] bool isLocalizationName(const std::filesystem::path& name);

/// Whether the path is a folder; a symbolic link to one is none. Any thread.
[[nodiscard]] bool isFolder(const std::filesystem::path& path);

/// Whether the folder in which the localization lies holds another. False if it cannot be listed. Any thread.
[[nodiscard]] bool isAnotherLocalizationBeside(const std::filesystem::path& localization);

}  // namespace brimvault::langres
