#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "files/DirectoryHandle.h"
#include "files/NodeStatus.h"

namespace brimvault::engine {

/// What a desktop's trash keeps beside its items, brought up to date after items of it were removed. All of it is best
/// effort, and through open folders, without following a link. One thread, and not the main one.
class TrashCleanup {
public:
    using Clock = std::chrono::system_clock;

    TrashCleanup() = default;
    TrashCleanup(const TrashCleanup&) = delete;
    TrashCleanup& operator=(const TrashCleanup&) = delete;
    /// Drops the lines of these folders from the trashes' "directorysizes": one new file for all of them, since each
    /// takes as long as the file is.
    ~TrashCleanup();

    /// The record of an item that is to be removed; none where there is none, or it is no regular file.
    [[nodiscard]] static std::optional<files::FileIdentity> recordOf(const std::filesystem::path& item);
    /// An item was removed. Removes its record, which by now may be that of another item of this name.
    void onRemoved(const std::filesystem::path& item, const std::optional<files::FileIdentity>& record);
    /// An item stays, at least in part: its size is not what it was.
    void onLeft(const std::filesystem::path& item);
    /// Removes the records without an item from the trashes of which an item was removed, but none that was written or
    /// changed on the last day: a record is written before its item comes.
    void removeOrphans(Clock::time_point now) const;

private:
    std::map<std::filesystem::path, std::set<std::string>> changed_;  ///< of each trash the names of the items
};

/// The text of a "directorysizes" without the lines of folders of these names; all else stays byte for byte.
[[nodiscard]] std::string withoutSizesOf(const std::set<std::string>& names, std::string_view text);

}  // namespace brimvault::engine
