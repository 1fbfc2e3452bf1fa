#pragma once

#include <filesystem>
#include <optional>
#include <vector>

namespace brimvault::platform {

/// The standard folders of the user who runs the process. Each call asks anew, but for the one that says otherwise;
/// none when the system names no such folder. The folder itself may be missing. Any thread.
///
/// An answer is resolved: how the user has arranged these folders, links included, is followed. It is never the home
/// folder, nor a folder that holds it. Whether what is in it may be listed, SectionRoots says.
class LibraryURLs {
public:
    static std::optional<std::filesystem::path> getCachesFolderURL();
    static std::optional<std::filesystem::path> getDownloadsFolderURL();
    /// Always the home folder's ".Trash", never a volume's.
    static std::optional<std::filesystem::path> getTrashFolderURL();
    /// The trash folder in which the desktop keeps what is trashed from the home folder; none where that is ".Trash".
    static std::optional<std::filesystem::path> getDesktopTrashFolderURL();
    static std::optional<std::filesystem::path> getApplicationFolderURL();
    /// Asked once in the life of the process.
    static std::optional<std::filesystem::path> getUserApplicationFolderURL();

    /// Where these are looked for, before any link is followed.
    static std::filesystem::path namedCachesFolder();
    /// Those between which it is chosen, without a look at the disk.
    static std::vector<std::filesystem::path> namedCachesFolders();
    static std::filesystem::path namedDownloadsFolder();
    static std::filesystem::path namedTrashFolder();
    static std::filesystem::path namedDesktopTrashFolder();
    /// The desktop's folders for what is the user's own: documents, pictures, the desktop itself and the like, without
    /// the downloads; before any link is followed. One that the user has switched off is left out.
    static std::vector<std::filesystem::path> namedUserFolders();

    /// Where the programs of the user keep their settings, and where this one does.
    static std::filesystem::path getConfigurationFolderURL();
    static std::filesystem::path getPreferencesFolderURL();
};

}  // namespace brimvault::platform
