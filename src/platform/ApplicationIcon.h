#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace brimvault::platform {

/// The icon in an application bundle. Any thread; blocks as long as the disk does.
class ApplicationIcon {
public:
    /// More than an icon file with all sizes has; a longer file is refused.
    static constexpr std::size_t maxBytes = 2UL * 1024 * 1024;

    /// The contents of the icon file, whatever its format, that the bundle's property list names ("CFBundleIconFile",
    /// or "NSIcon" and "ApplicationIcon" in flat bundles). None where there is no list, where it names no regular file
    /// among the bundle's resources, or where that file is too long. No symbolic link is followed.
    [[nodiscard]] static std::optional<std::string> read(const std::filesystem::path& application);
};

}  // namespace brimvault::platform
