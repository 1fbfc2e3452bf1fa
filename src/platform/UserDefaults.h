#pragma once

#include <QMap>
#include <QSettings>
#include <QString>
#include <filesystem>
#include <memory>
#include <optional>

namespace brimvault::platform {

/// The user's settings and statistics: numbers under fixed keys, in one text file. A change is written and flushed at
/// once.
///
/// A file that cannot be understood is moved aside, under its name with ".damaged-" and the time, and a new one is
/// begun; where it cannot be moved, or not be read at all, nothing is written, so that what is there is never lost. One
/// thread, the one that made it.
class UserDefaults {
public:
    explicit UserDefaults(const std::filesystem::path& file);
    /// The file of the user who runs the process.
    static std::filesystem::path standardFile();

    /// The value, only when it reads as a whole number that is not negative.
    [[nodiscard]] std::optional<quint64> number(const QString& key) const;
    /// The value, only when it reads as "true", "false" or a whole number (0 is NO).
    [[nodiscard]] std::optional<bool> boolean(const QString& key) const;

    void setNumber(const QString& key, quint64 value);
    void setBoolean(const QString& key, bool value);
    /// Adds 1 to a counter; one that is absent counts from 0.
    void increase(const QString& key);

private:
    [[nodiscard]] QString text(const QString& key) const;
    void write(const QString& key, const QString& value);

    std::unique_ptr<QSettings> settings_;  ///< null when the file cannot be read
    bool writable_ = true;
    QMap<QString, QString> unsaved_;  ///< what was set while the file must not be touched
};

}  // namespace brimvault::platform
