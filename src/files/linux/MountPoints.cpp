#include "files/MountPoints.h"

#include <charconv>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string_view>
#include <system_error>

namespace brimvault::files {

namespace {

// Blanks, line breaks and backslashes stand as three octal digits behind a backslash.
std::string unescaped(std::string_view text) {
    constexpr std::size_t digits = 3;
    constexpr int octal = 8;
    std::string bytes;
    while (!text.empty()) {
        unsigned value = 0;
        const bool isEscaped =
            text.front() == '\\' && text.size() > digits &&
            std::from_chars(text.data() + 1, text.data() + 1 + digits, value, octal).ec == std::errc();
        bytes.push_back(isEscaped ? static_cast<char>(value) : text.front());
        text.remove_prefix(isEscaped ? 1 + digits : 1);
    }
    return bytes;
}

}  // namespace

bool holdsMountPoint(const DirectoryHandle& folder, const std::string& name) {
    std::error_code unknown;
    const auto path = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(folder.descriptor()), unknown);
    std::ifstream mounts("/proc/self/mountinfo");
    if (unknown || !mounts) {
        return true;
    }
    const auto entry = (path / name).native();
    std::string line;
    while (std::getline(mounts, line)) {
        std::istringstream fields(line);
        std::string skipped;
        std::string point;
        fields >> skipped >> skipped >> skipped >> skipped >> point;
        point = unescaped(point);
        if (point.starts_with(entry) && (point.size() == entry.size() || point[entry.size()] == '/')) {
            return true;
        }
    }
    return false;
}

}  // namespace brimvault::files
