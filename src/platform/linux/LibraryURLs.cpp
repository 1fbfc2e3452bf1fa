#include "platform/LibraryURLs.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>

#include "files/NodeStatus.h"
#include "platform/FileContents.h"
#include "platform/System.h"

namespace brimvault::platform {

namespace {

namespace fs = std::filesystem;

// A folder of the XDG base directories: the variable's where it holds an absolute path, else the default below home.
fs::path baseFolder(const char* variable, const char* defaultName) {
    const fs::path named = system().environmentVariable(variable);
    return named.is_absolute() ? named : homeFolder() / defaultName;
}

bool holds(const fs::path& folder, const fs::path& inner) {
    const auto [end, rest] = std::mismatch(folder.begin(), folder.end(), inner.begin(), inner.end());
    return end == folder.end();
}

// The folder with the way to it resolved; none where emptying it would empty the home folder.
std::optional<fs::path> standardFolder(const fs::path& named) {
    auto plain = named.lexically_normal();
    if (!plain.has_filename()) {
        plain = plain.parent_path();  // a trailing slash
    }
    std::error_code unresolved;
    const auto parent = fs::canonical(plain.parent_path(), unresolved);
    const auto folder = unresolved ? plain : parent / plain.filename();
    if (!folder.has_filename() || holds(folder, homeFolder())) {
        return std::nullopt;
    }
    return folder;
}

// The value of a line `XDG_DOWNLOAD_DIR="$HOME/Downloads"`: a quoted absolute path, or one below $HOME, with a
// backslash before any of "$`\ in it (the format that xdg-user-dirs documents in the file itself).
std::optional<fs::path> userDirectory(std::string_view line) {
    constexpr std::string_view key = "XDG_DOWNLOAD_DIR=\"";
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    if (!line.starts_with(key)) {
        return std::nullopt;
    }
    line.remove_prefix(key.size());
    fs::path start;
    constexpr std::string_view home = "$HOME";
    if (line.starts_with(home)) {
        start = homeFolder();
        line.remove_prefix(home.size());
        if (!line.empty() && line.front() != '/' && line.front() != '"') {
            return std::nullopt;  // another variable, whose name begins alike
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

}  // namespace

std::optional<fs::path> LibraryURLs::getCachesFolderURL() {
    const auto library = homeFolder() / "Library" / "Caches";
    const auto shared = baseFolder("XDG_CACHE_HOME", ".cache");
    if (!files::mayExist(library) && files::mayExist(shared)) {
        return standardFolder(shared);
    }
    return standardFolder(library);
}

std::optional<fs::path> LibraryURLs::getDownloadsFolderURL() {
    constexpr std::size_t largestFile = 1024UL * 1024;  // the desktop writes a dozen lines
    std::istringstream file(
        FileContents::read(getConfigurationFolderURL() / "user-dirs.dirs", largestFile).value_or(std::string()));
    fs::path downloads = homeFolder() / "Downloads";
    for (std::string line; std::getline(file, line);) {
        if (const auto named = userDirectory(line)) {
            downloads = *named;
        }
    }
    return standardFolder(downloads);  // naming the home folder is the way to have no such folder
}

std::optional<fs::path> LibraryURLs::getTrashFolderURL() { return homeFolder() / ".Trash"; }

std::optional<fs::path> LibraryURLs::getDesktopTrashFolderURL() {
    return standardFolder(baseFolder("XDG_DATA_HOME", ".local/share") / "Trash");
}

std::optional<fs::path> LibraryURLs::getApplicationFolderURL() { return systemRoot() / "Applications"; }

std::optional<fs::path> LibraryURLs::getUserApplicationFolderURL() {
    static const fs::path folder = homeFolder() / "Applications";
    return folder;
}

fs::path LibraryURLs::getConfigurationFolderURL() { return baseFolder("XDG_CONFIG_HOME", ".config"); }

fs::path LibraryURLs::getPreferencesFolderURL() { return getConfigurationFolderURL() / "com.quorvel.brimvault"; }

}  // namespace brimvault::platform
