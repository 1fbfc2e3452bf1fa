#include "platform/LibraryURLs.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "files/NodeStatus.h"
#include "platform/FolderLocations.h"
#include "platform/System.h"
#include "platform/formats/FileContents.h"

namespace brimvault::platform {

namespace {

namespace fs = std::filesystem;

// An XDG base directory: the variable's value if that is an absolute path, else the default below the home folder.
fs::path folderOf(const char* variable, const char* defaultName) {
    const fs::path named = system().environmentVariable(variable);
    return named.is_absolute() ? named : homeFolder() / defaultName;
}

// What names a base folder, and its default below the home folder.
std::pair<const char*, const char*> variableAndName(BaseFolder folder) {
    switch (folder) {
        case BaseFolder::cache:
            return {"XDG_CACHE_HOME", ".cache"};
        case BaseFolder::configuration:
            return {"XDG_CONFIG_HOME", ".config"};
        case BaseFolder::data:
            return {"XDG_DATA_HOME", ".local/share"};
        case BaseFolder::state:
            break;
    }
    return {"XDG_STATE_HOME", ".local/state"};
}

// Normalised, without a trailing slash.
fs::path plain(const fs::path& named) {
    const auto normal = named.lexically_normal();
    return normal.has_filename() ? normal : normal.parent_path();
}

// The folder with symbolic links resolved, as far as it exists; none where emptying it would empty the home folder.
std::optional<fs::path> standardFolder(const fs::path& named) {
    std::error_code unresolved;
    auto folder = fs::canonical(named, unresolved);
    if (unresolved) {
        const auto parent = fs::canonical(named.parent_path(), unresolved);
        folder = unresolved ? named : parent / named.filename();
    }
    if (!folder.has_filename() || holds(folder, homeFolder())) {
        return std::nullopt;
    }
    return folder;
}

// Parses a line `KEY="$HOME/Downloads"`: a quoted absolute path, or one below $HOME, with a backslash before any of
// "$`\ in it (the format that xdg-user-dirs documents in the file itself).
std::optional<fs::path> userDirectory(std::string_view line, std::string_view key) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    if (!line.starts_with(key) || !line.substr(key.size()).starts_with("=\"")) {
        return std::nullopt;
    }
    line.remove_prefix(key.size() + 2);
    fs::path start;
    constexpr std::string_view home = "$HOME";
    if (line.starts_with(home)) {
        start = homeFolder();
        line.remove_prefix(home.size());
        if (!line.empty() && line.front() != '/' && line.front() != '"') {
            return std::nullopt;  // another variable, such as $HOMEPAGE
        }
    }
    std::string rest;
    for (std::size_t at = 0; at < line.size() && line[at] != '"'; ++at) {
        at += line[at] == '\\' && at + 1 < line.size() ? 1 : 0;
        rest.push_back(line[at]);
    }
    if (start.empty() && !rest.starts_with('/')) {
        return std::nullopt;
    }
    return fs::path(start.string() + rest);
}

// The folder that user-dirs.dirs has for the key, where the last line counts; else the default below the home folder.
fs::path userFolder(std::string_view key, const char* defaultName) {
    constexpr std::size_t maxBytes = 1024UL * 1024;  // the desktop writes a dozen lines
    fs::path folder = homeFolder() / defaultName;
    std::istringstream lines(
        FileContents::read(LibraryURLs::getConfigurationFolderURL() / "user-dirs.dirs", maxBytes).value_or(""));
    for (std::string line; std::getline(lines, line);) {
        if (const auto named = userDirectory(line, key)) {
            folder = *named;
        }
    }
    return plain(folder);
}

}  // namespace

std::vector<fs::path> LibraryURLs::namedCachesFolders() {
    return {homeFolder() / "Library" / "Caches", plain(folderOf("XDG_CACHE_HOME", ".cache"))};
}

fs::path LibraryURLs::namedCachesFolder() {
    const auto folders = namedCachesFolders();
    return !files::mayExist(folders.front()) && files::mayExist(folders.back()) ? folders.back() : folders.front();
}

fs::path LibraryURLs::namedDownloadsFolder() { return userFolder("XDG_DOWNLOAD_DIR", "Downloads"); }

fs::path LibraryURLs::namedTrashFolder() { return homeFolder() / ".Trash"; }

fs::path LibraryURLs::namedDesktopTrashFolder() { return plain(folderOf("XDG_DATA_HOME", ".local/share") / "Trash"); }

std::vector<fs::path> LibraryURLs::namedUserFolders() {
    constexpr std::pair<const char*, const char*> folders[] = {
        {"XDG_DESKTOP_DIR", "Desktop"},    {"XDG_DOCUMENTS_DIR", "Documents"}, {"XDG_MUSIC_DIR", "Music"},
        {"XDG_PICTURES_DIR", "Pictures"},  {"XDG_VIDEOS_DIR", "Videos"},       {"XDG_PUBLICSHARE_DIR", "Public"},
        {"XDG_TEMPLATES_DIR", "Templates"}};
    std::vector<fs::path> named;
    for (const auto& [key, name] : folders) {
        if (auto folder = userFolder(key, name);
            folder != homeFolder()) {  // the home folder means that the user has disabled it
            named.push_back(std::move(folder));
        }
    }
    return named;
}

std::optional<fs::path> LibraryURLs::getCachesFolderURL() { return standardFolder(namedCachesFolder()); }

// The home folder means that the user has disabled it: standardFolder() answers none.
std::optional<fs::path> LibraryURLs::getDownloadsFolderURL() { return standardFolder(namedDownloadsFolder()); }

std::optional<fs::path> LibraryURLs::getTrashFolderURL() { return standardFolder(namedTrashFolder()); }

std::optional<fs::path> LibraryURLs::getDesktopTrashFolderURL() { return standardFolder(namedDesktopTrashFolder()); }

std::optional<fs::path> LibraryURLs::getApplicationFolderURL() { return systemRoot() / "Applications"; }

std::optional<fs::path> LibraryURLs::getUserApplicationFolderURL() {
    static const fs::path folder = homeFolder() / "Applications";
    return folder;
}

std::optional<fs::path> LibraryURLs::baseFolder(BaseFolder folder) {
    const auto& [variable, name] = variableAndName(folder);
    return plain(folderOf(variable, name));
}

fs::path LibraryURLs::defaultBaseFolder(BaseFolder folder) { return homeFolder() / variableAndName(folder).second; }

std::optional<fs::path> LibraryURLs::getHistoryFolderURL() {
    const auto state = systemRoot() == "/" ? baseFolder(BaseFolder::state) : homeFolder() / ".local/state";
    return state ? std::optional(*state / "brimvault") : std::nullopt;
}

fs::path LibraryURLs::getConfigurationFolderURL() { return folderOf("XDG_CONFIG_HOME", ".config"); }

fs::path LibraryURLs::getPreferencesFolderURL() { return getConfigurationFolderURL() / "com.quorvel.brimvault"; }

}  // namespace brimvault::platform
