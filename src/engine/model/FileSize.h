#pragma once

#include <QString>
#include <QtGlobal>
#include <filesystem>

#include "engine/notification/Notification.h"

namespace brimvault::engine {

/// Texts for sizes, in decimal units (steps of 1000), the same in every locale. Any thread.
class FileSize {
public:
    /// Every size in the window. At most two decimals below 100 of a unit, at most one above, no trailing zeros; B to
    /// PB. The unit is chosen before rounding; halves round to the even digit of the decimal number.
    [[nodiscard]] static QString formatMemoryStringDot1(quint64 bytes);

    // --- Kept for callers outside of the window: nothing in src calls these ---

    /// Whole numbers, B to TB; the unit is chosen before rounding, so 999,999 bytes are "1000 KB".
    [[nodiscard]] static QString formatMemoryStringDot0(quint64 bytes);
    /// The same for a number of a notification.
    [[nodiscard]] static QString formatMemoryStringDot0NSnum(Number bytes) {
        return formatMemoryStringDot0(static_cast<quint64>(bytes));
    }
    [[nodiscard]] static QString formatMemoryStringDot1NSnum(Number bytes) {
        return formatMemoryStringDot1(static_cast<quint64>(bytes));
    }
    /// The last component of the path as the file system presents it.
    [[nodiscard]] static QString getDisplayNameAtPath(const std::filesystem::path& path);
};

}  // namespace brimvault::engine
