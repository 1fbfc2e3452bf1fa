#pragma once

#include <QString>
#include <QtGlobal>
#include <filesystem>
#include <optional>

#include "platform/formats/SettingsText.h"

namespace brimvault::platform {

/// The user's settings and statistics: numbers under fixed keys, in one text file. A change is written and flushed at
/// once.
///
/// A file that cannot be parsed is renamed, to its name with ".damaged-" and the time, and a new one is begun. Where it
/// cannot be renamed or read, or is no regular file of at most 1 MiB, nothing is written from then on, so that no
/// settings are lost. One thread, the one that made it; blocks only for the disk.
class UserDefaults {
public:
    explicit UserDefaults(std::filesystem::path file);
    /// The file of the user who runs the process.
    static std::filesystem::path standardFile();

    /// The value, only when it reads as a whole number that is not negative.
    [[nodiscard]] std::optional<quint64> number(const QString& key) const;
    /// The value, only when it reads as "true", "false" or a whole number (0 is false).
    [[nodiscard]] std::optional<bool> boolean(const QString& key) const;

    void setNumber(const QString& key, quint64 value);
    void setBoolean(const QString& key, bool value);
    /// Adds 1 to a counter; one that is absent counts from 0.
    void increase(const QString& key);

private:
    [[nodiscard]] QString text(const QString& key) const;
    void reload();
    void write(const QString& key, const QString& value);

    const std::filesystem::path file_;
    SettingsText text_;  ///< as it was last seen in the file, or written to it
    bool writable_ = true;
    SettingsText::Values unsaved_;  ///< what was set and could not be written
};

}  // namespace brimvault::platform
