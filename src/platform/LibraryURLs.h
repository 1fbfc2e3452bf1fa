#pragma once

#include <filesystem>
#include <optional>
#include <vector>

namespace brimvault::platform {

/// The folders below which programs keep what is the user's (XDG Base Directory 0.8, freedesktop.org).
enum class BaseFolder { cache, configuration, data, state };

/// The standard folders of the user who runs the process. Nothing is cached unless a function says so; none when the
/// system names no such folder. The folder itself may be missing. Any thread.
///
/// Symbolic links in the result are resolved. It is never the home folder, nor a folder that holds it. Whether its
/// contents may be listed is decided by SectionRoots.
class LibraryURLs {
public:
    static std::optional<std::filesystem::path> getCachesFolderURL();
    static std::optional<std::filesystem::path> getDownloadsFolderURL();
    /// Always the home folder's ".Trash", never a volume's.
    static std::optional<std::filesystem::path> getTrashFolderURL();
    /// The trash folder in which the desktop keeps what is trashed from the home folder; none where that is ".Trash".
    static std::optional<std::filesystem::path> getDesktopTrashFolderURL();
    static std::optional<std::filesystem::path> getApplicationFolderURL();
    /// Cached for the life of the process.
    static std::optional<std::filesystem::path> getUserApplicationFolderURL();

    /// The same folders before symbolic links are resolved.
    static std::filesystem::path namedCachesFolder();
    /// The candidates for the caches folder; does not access the disk.
    static std::vector<std::filesystem::path> namedCachesFolders();
    static std::filesystem::path namedDownloadsFolder();
    static std::filesystem::path namedTrashFolder();
    static std::filesystem::path namedDesktopTrashFolder();
    /// The desktop's folders for the user's own files (documents, pictures, the desktop and the like, without
    /// downloads), symbolic links unresolved. One that the user has disabled is left out.
    static std::vector<std::filesystem::path> namedUserFolders();

    /// A base folder of the desktop, symbolic links unresolved; none where the system has no such folders.
    static std::optional<std::filesystem::path> baseFolder(BaseFolder folder);
    /// Where it is by default, if no variable names another place.
    static std::filesystem::path defaultBaseFolder(BaseFolder folder);

    /// Where this program keeps its history; none where the system has no such folder. In a trial it lies in the home
    /// folder, whatever the environment says.
    static std::optional<std::filesystem::path> getHistoryFolderURL();

    /// Where programs keep the settings of the user, and where this one does.
    static std::filesystem::path getConfigurationFolderURL();
    static std::filesystem::path getPreferencesFolderURL();
};

}  // namespace brimvault::platform
