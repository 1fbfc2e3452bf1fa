#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace brimvault::platform {

/// Folders that the desktop presents as one thing: applications, plug-ins, documents made of many files. Any thread.
class Packages {
public:
    /// Whether the folder, which may not be a link, is one: by its name's extension, in any letter case, or by the mark
    /// that the file browser sets on it.
    [[nodiscard]] static bool isPackage(const std::filesystem::path& folder);
    /// The extension is one of a package; without its full stop.
    [[nodiscard]] static bool isPackageExtension(const std::string& extension);

    /// "CFBundleIdentifier" of the bundle's own "Info.plist"; none where that is missing, damaged, too large, or
    /// reached through a link.
    [[nodiscard]] static std::optional<std::string> bundleIdentifier(const std::filesystem::path& bundle);
};

}  // namespace brimvault::platform
