#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace brimvault::platform {

/// Folders that the desktop presents as one item: applications, plug-ins, documents made of many files. Any thread.
class Packages {
public:
    /// Whether the folder is a package: by its extension, in any letter case, or by the file browser's bundle flag. The
    /// path must not be a symbolic link.
    [[nodiscard]] static bool isPackage(const std::filesystem::path& folder);
    /// Without the full stop.
    [[nodiscard]] static bool isPackageExtension(const std::string& extension);

    /// "CFBundleIdentifier" of the bundle's "Info.plist"; none where that is missing, damaged, too large, or reached
    /// through a symbolic link.
    [[nodiscard]] static std::optional<std::string> bundleIdentifier(const std::filesystem::path& bundle);
};

}  // namespace brimvault::platform
