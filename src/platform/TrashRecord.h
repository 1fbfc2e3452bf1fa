#pragma once

#include <QDateTime>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "files/DirectoryHandle.h"

namespace brimvault::platform {

/// What the desktop's record says of an item of the trash. Anyone can have written it: what it says is shown, and never
/// used as a path.
struct TrashRecord {
    std::string origin;    ///< where the item was, an absolute path in plain bytes; empty where that is unknown
    QDateTime deleted;     ///< local time; invalid where that is unknown
    std::size_t size = 0;  ///< of the record itself, in bytes

    /// `top` is the folder to which a relative path refers; empty where none is allowed.
    [[nodiscard]] static TrashRecord parse(std::string_view text, const std::filesystem::path& top);
};

/// Reads the records of items; keeps the folder with those of the last item open. Reads regular files of at most
/// `maxBytes` and follows no link. One thread, and not the main one.
class TrashRecords {
public:
    /// A path of the longest kind with every byte encoded, and what else the record has.
    static constexpr std::size_t maxBytes = 16UL * 1024;

    /// None for an item that lies where there are no records; an empty one where the record is missing or unreadable.
    [[nodiscard]] std::optional<TrashRecord> ofItem(const std::filesystem::path& item);

private:
    void openRecordsOf(const std::filesystem::path& item);

    std::filesystem::path items_;                   ///< the folder of the last item
    std::optional<std::filesystem::path> records_;  ///< that of its records; none where there are none
    std::filesystem::path top_;                     ///< to which relative paths in these belong
    std::optional<files::DirectoryHandle> handle_;
};

}  // namespace brimvault::platform
