#pragma once

#include <QDateTime>
#include <QString>
#include <filesystem>
#include <optional>

#include "files/NodeStatus.h"
#include "platform/TrashRecord.h"

namespace brimvault::engine {

/// The information window's facts about one file, folder or symbolic link (about the link itself, not its target).
struct FileFacts {
    files::NodeKind kind = files::NodeKind::other;
    QString name;
    QString folder;  ///< full path of the folder that holds it
    QString type;    ///< of a regular file, by its name, as "PNG image"
    QString linkTarget;
    QDateTime modified;
    QDateTime accessed;
    std::optional<QDateTime> created;
    QString owner;
    QString group;
    std::uint32_t permissions = 0;                 ///< the twelve permission bits
    std::optional<platform::TrashRecord> trashed;  ///< set for an item of a desktop's trash

    /// None if there is nothing at the path, or it cannot be read. Blocks; any thread but the main one.
    [[nodiscard]] static std::optional<FileFacts> of(const std::filesystem::path& path);

    /// As "rwxr-xr-x", with s and t where the special bits are set.
    [[nodiscard]] QString permissionText() const;
};

}  // namespace brimvault::engine
