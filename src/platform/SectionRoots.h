#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "files/DirectoryHandle.h"
#include "platform/FolderWays.h"

namespace brimvault::platform {

/// Why nothing in a section's root folder is listed.
enum class RootRefusal {
    none,             ///< it is listed
    missing,          ///< there is no such folder
    leadsNowhere,     ///< a link, and where it leads there is nothing, or it leads in a circle
    noFolder,         ///< something else stands in its place
    closed,           ///< it may not be read
    homeFolder,       ///< it is the home folder, or holds it
    userFolder,       ///< it is one of the desktop's folders for the user's own things, or holds one
    otherRootFolder,  ///< it is the root folder of another section, or holds such a folder
};

/// Where a section looks for its files, and where that has led.
struct RootPlace {
    std::filesystem::path named;
    std::filesystem::path resolved;  ///< without links
    RootRefusal refusal = RootRefusal::none;
    std::filesystem::path obstacle;  ///< what it is or holds, for the last three refusals
    bool operator==(const RootPlace&) const = default;
};

/// A section's root folder, looked up once and held from then on. How the user has arranged the home folder and these
/// folders, links included, is followed; inside them nothing is.
struct SectionRoot {
    std::shared_ptr<const RootPlace> place;
    std::optional<files::DirectoryHandle> folder;  ///< to be listed; set exactly when nothing is refused
};

/// Looks the folder up, by the one rule for all root folders. A path that is none of the sections' own is held against
/// these as well. Any thread but the main one.
[[nodiscard]] SectionRoot openSectionRoot(const std::filesystem::path& named);

/// Whether the folder that is named still leads where it has led.
[[nodiscard]] bool leadsWhereItDid(const RootPlace& place);

/// The sections' own root folders, where they are and in what they lie; some may not exist. Any thread but the main
/// one.
[[nodiscard]] std::vector<FolderWay> sectionRootWays();

}  // namespace brimvault::platform
