#pragma once

#include "platform/StoredDefaults.h"

namespace brimvault::platform {

/// The user's settings and statistics: numbers under fixed keys, in one text file. A change is written and flushed at
/// once.
///
/// A file that cannot be parsed is renamed, to its name with ".damaged-" and the time, and a new one is begun. Where it
/// cannot be renamed or read, or is no regular file of at most 1 MiB, nothing is written from then on, so that no
/// settings are lost. One thread, the one that made it; blocks only for the disk.
class UserDefaults : public StoredDefaults {
public:
    explicit UserDefaults(std::filesystem::path file);

    void setNumber(const QString& key, quint64 value);
    void setBoolean(const QString& key, bool value);
    /// Adds 1 to a counter; one that is absent counts from 0.
    void increase(const QString& key);

private:
    void reload();
    void write(const QString& key, const QString& value);

    const std::filesystem::path file_;
    bool writable_ = true;
    SettingsText::Values unsaved_;  ///< what was set and could not be written
};

}  // namespace brimvault::platform
