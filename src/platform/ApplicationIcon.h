#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace brimvault::platform {

/// The picture that an application has for itself. Any thread; blocks as long as the disk does.
class ApplicationIcon {
public:
    /// More than icons with all of their sizes hold; whatever is longer is none.
    static constexpr std::size_t mostBytes = 2UL * 1024 * 1024;

    /// The contents of the picture file, of whatever format, that the application's own list names ("CFBundleIconFile",
    /// or "NSIcon" and "ApplicationIcon" of flat bundles). None where there is no list, where it names none or another
    /// than a plain file among the application's resources, or where that is too long. No link is followed.
    [[nodiscard]] static std::optional<std::string> read(const std::filesystem::path& application);
};

}  // namespace brimvault::platform
