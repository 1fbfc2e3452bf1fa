#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <QStringList>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "files/DirectoryHandle.h"

namespace brimvault::engine {

/// Facts about files, for the engine and the lists. Every failure reads as 0, false, none or empty. Symbolic links are
/// not followed. Any thread.
class FileManager {
public:
    /// Whether the item is locked against removal (immutable or append-only), even by the administrator.
    [[nodiscard]] static bool isFileLocked(const std::filesystem::path& path);
    /// Whether the application carries a quarantine mark that the user has not cleared.
    [[nodiscard]] static bool isAppPathInQuarantine(const std::filesystem::path& path);
    [[nodiscard]] static QDateTime dateOf(std::chrono::system_clock::time_point time);
    /// The item's name for people: of an application without its extension.
    [[nodiscard]] static QString displayNameAtPath(const std::filesystem::path& path);

    // --- Kept for callers outside of the window: nothing in src but this class calls these ---

    /// The bytes of an extended attribute; none when it is absent or empty.
    [[nodiscard]] static std::optional<std::string> extendedAttributeWithName(const std::string& name,
                                                                              const std::filesystem::path& path);
    [[nodiscard]] static QStringList extendedAttributesListAtPath(const std::filesystem::path& path);

    /// A folder's size is the sum of this property over everything in it that is no folder.
    enum class FileProperty { allocatedSize, logicalSize };
    /// The length of a file; for a folder the sum of the property over its contents.
    [[nodiscard]] static std::uint64_t sizeOfFileAtPath(const std::filesystem::path& path, FileProperty property);
    [[nodiscard]] static std::uint64_t physicalSizeOfFileAtPath(const std::filesystem::path& path) {
        return sizeOfFileAtPath(path, FileProperty::allocatedSize);
    }
    [[nodiscard]] static std::uint64_t logicalSizeOfFileAtPath(const std::filesystem::path& path) {
        return sizeOfFileAtPath(path, FileProperty::logicalSize);
    }
    /// The logical size, plus the lengths that the file system states for the folders inside.
    [[nodiscard]] static std::uint64_t fullSizeOfFileAtPath(const std::filesystem::path& path);
    [[nodiscard]] static std::int64_t numberOfFilesInFolder(const std::filesystem::path& path,
                                                            files::HiddenEntries countHiddenFiles);

    [[nodiscard]] static std::optional<QDateTime> modificationDateOfFilePath(const std::filesystem::path& path);
    [[nodiscard]] static std::optional<QString> stringmodificationDateOfFilePath(const std::filesystem::path& path,
                                                                                 QLocale::FormatType style);

    /// The path as text for people.
    [[nodiscard]] static QString getLocalizedPath(const std::filesystem::path& path);
    /// The path with every ":" shown as "/".
    [[nodiscard]] static QString displayPathAtPath(const std::filesystem::path& path);
};

}  // namespace brimvault::engine
