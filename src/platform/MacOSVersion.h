#pragma once

#include <QOperatingSystemVersion>

namespace brimvault::platform {

/// The version of macOS that the program runs on; false on other systems. Any thread.
class MacOSVersion {
public:
    [[nodiscard]] static bool is_10_9_orHigher() { return isAtLeast(9); }
    [[nodiscard]] static bool is_10_10_orHigher() { return isAtLeast(10); }

private:
    static bool isAtLeast(int minor) {
        const auto current = QOperatingSystemVersion::current();
        return current.type() == QOperatingSystemVersion::MacOS &&
               current >= QOperatingSystemVersion(QOperatingSystemVersion::MacOS, 10, minor);
    }
};

}  // namespace brimvault::platform
