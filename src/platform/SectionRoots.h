#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "files/DirectoryHandle.h"
#include "platform/FolderLocations.h"

namespace brimvault::platform {

/// Why a section's root folder is not listed.
enum class RootRefusal {
    none,             ///< it is listed
    missing,          ///< there is no such folder
    leadsNowhere,     ///< a symbolic link that is dangling or circular
    noFolder,         ///< something else stands in its place
    closed,           ///< it may not be read
    homeFolder,       ///< it is the home folder, or holds it
    userFolder,       ///< it is one of the desktop's folders for the user's own things, or holds one
    otherRootFolder,  ///< it is the root folder of another section, or holds such a folder
};

/// The root folder of a section, and where its path has led.
struct RootPlace {
    std::filesystem::path named;
    std::filesystem::path resolved;  ///< without symbolic links
    RootRefusal refusal = RootRefusal::none;
    std::filesystem::path obstacle;  ///< what it is or holds, for the last three refusals
    bool operator==(const RootPlace&) const = default;
};

/// A section's root folder, opened once and held open. Symbolic links in its path are followed, as users move these
/// folders to other disks; inside of it none is.
struct SectionRoot {
    std::shared_ptr<const RootPlace> place;
    std::optional<files::DirectoryHandle> folder;  ///< to be listed; set exactly when nothing is refused
};

/// Opens the folder if the rules for root folders allow it. They hold for any path, also one that is no section's own.
/// Any thread but the main one.
[[nodiscard]] SectionRoot openSectionRoot(const std::filesystem::path& named);

/// Whether the path still resolves to the same folder.
[[nodiscard]] bool leadsWhereItDid(const RootPlace& place);

/// Where the root folders of all sections are; some may not exist. Any thread but the main one.
[[nodiscard]] std::vector<FolderLocation> locateSectionRoots();

}  // namespace brimvault::platform
