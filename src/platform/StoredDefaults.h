#pragma once

#include <QString>
#include <QtGlobal>
#include <filesystem>
#include <optional>
#include <string>

#include "platform/formats/SettingsText.h"

namespace brimvault::platform {

/// The user's settings and statistics as their file has them, to be read alone: the file is never changed, nor made
/// where there is none. A file that is damaged, cannot be read, or is no regular file of at most 1 MiB reads as empty.
/// One thread, the one that made it; blocks only for the disk.
class StoredDefaults {
public:
    explicit StoredDefaults(const std::filesystem::path& file) { (void)load(file); }
    /// The file of the user who runs the process.
    static std::filesystem::path standardFile();

    /// The value, only when it reads as a whole number that is not negative.
    [[nodiscard]] std::optional<quint64> number(const QString& key) const;
    /// The value, only when it reads as "true", "false" or a whole number (0 is false).
    [[nodiscard]] std::optional<bool> boolean(const QString& key) const;

protected:
    enum class FileState { usable, damaged, unreadable };

    StoredDefaults() = default;
    /// Takes the values from the file, which may be missing; keeps the old ones unless it is usable.
    [[nodiscard]] FileState load(const std::filesystem::path& file);
    /// The values, as they were last seen in the file or set.
    [[nodiscard]] SettingsText& values() { return text_; }

    static constexpr const char* group = "General";
    /// The key as it stands in the file.
    [[nodiscard]] static std::string nameInFile(const QString& key);

private:
    [[nodiscard]] QString text(const QString& key) const;

    SettingsText text_;
};

}  // namespace brimvault::platform
