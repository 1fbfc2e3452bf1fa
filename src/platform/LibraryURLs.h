#pragma once

#include <filesystem>
#include <optional>

namespace brimvault::platform {

/// The standard folders of the user who runs the process. Each call asks anew, but for the one that says otherwise;
/// none when the system names no such folder. The folder itself may be missing. Any thread.
///
/// The folders that lead to an answer are resolved; its last name may be a link, and is then not followed by those who
/// list or remove. An answer is never the home folder, nor a folder that holds it.
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

    /// Where the programs of the user keep their settings, and where this one does.
    static std::filesystem::path getConfigurationFolderURL();
    static std::filesystem::path getPreferencesFolderURL();
};

}  // namespace brimvault::platform
