#pragma once

#include <filesystem>

namespace brimvault::langres {

/// Whether a folder of this name holds a localization: its extension ends in "lproj", in any letter case, and it is not
/// "Base", which holds what all languages share. Any thread.
[[nodiscard]] bool isLocalizationName(const std::filesystem::path& name);

/// Whether a folder stands at the path; a link to one is none. Any thread.
[[nodiscard]] bool isFolder(const std::filesystem::path& path);

/// Whether the folder that holds a localization holds another one as well. One that cannot be listed holds none that
/// anyone could rely on. Any thread.
[[nodiscard]] bool isAnotherLocalizationBeside(const std::filesystem::path& localization);

}  // namespace brimvault::langres
