#include "engine/removal/ProtectedFolders.h"

#include <algorithm>
#include <iterator>

#include "platform/LibraryURLs.h"
#include "platform/SectionRoots.h"
#include "platform/System.h"
#include "platform/TrashFolders.h"

namespace brimvault::engine {

using platform::LibraryURLs;

namespace {

// From the file system's root; the Logs section shows them.
constexpr const char* systemLogs[] = {"var/log", "var/lib/systemd/coredump"};

// Of what is not there, the location has fewer folders than its path has names.
bool isLocatedAt(const platform::FolderLocation& location, const std::filesystem::path& folder,
                 const files::Result<files::NodeStatus>& status) {
    const auto& resolved = location.resolved;
    const bool exists =
        location.folders.size() == static_cast<std::size_t>(std::distance(resolved.begin(), resolved.end()));
    return resolved == folder || (exists && status && location.folders.back() == status->identity);
}

}  // namespace

// For a root that does not exist, the folders that would hold it are protected.
ProtectedFolders::ProtectedFolders() : locations_(platform::locateSectionRoots()) {
    const auto trash = LibraryURLs::namedDesktopTrashFolder();
    std::vector<std::filesystem::path> named = {trash / "files", trash / "info", LibraryURLs::getPreferencesFolderURL(),
                                                platform::homeFolder()};
    named.insert(named.end(), {platform::systemRoot() / "usr", platform::systemRoot() / "var" / "crash"});
    std::transform(std::begin(systemLogs), std::end(systemLogs), std::back_inserter(named),
                   [](const char* folder) { return platform::systemRoot() / folder; });
    auto userFolders = LibraryURLs::namedUserFolders();
    std::move(userFolders.begin(), userFolders.end(), std::back_inserter(named));
    const auto programs = platform::programFolders();
    const auto others = named.size();
    std::transform(programs.begin(), programs.end(), std::back_inserter(named),
                   [](const platform::ProgramFolder& folder) { return folder.named; });
    const auto more = platform::locate(named);
    for (std::size_t number = 0; number < programs.size(); ++number) {
        holders_.push_back({programs[number], more[others + number]});
        maxLevels_ = std::max(maxLevels_, programs[number].levels);
    }
    std::copy(more.begin(), more.end(), std::back_inserter(locations_));
}

bool ProtectedFolders::keeps(const std::filesystem::path& path, const files::NodeStatus& item) {
    const bool isFolderOrLink = item.kind == files::NodeKind::directory || item.kind == files::NodeKind::link;
    return isFolderOrLink && (platform::TrashFolders::isPartOfTrash(path.lexically_normal()) ||
                              isOneOrHoldsOne(path, item) || isOfAProgram(path));
}

bool ProtectedFolders::areSystemLogs(const std::filesystem::path& path) {
    const auto root = platform::systemRoot();
    const auto normal = path.lexically_normal();
    return std::any_of(std::begin(systemLogs), std::end(systemLogs),
                       [&](const char* folder) { return platform::holds(root / folder, normal); });
}

bool ProtectedFolders::isOfAProgram(const std::filesystem::path& path) {
    if (parent_ != path.parent_path()) {
        noteKeptIn(path.parent_path());
    }
    return keepsAllFolders_ || std::find(keptNames_.begin(), keptNames_.end(), path.filename()) != keptNames_.end();
}

void ProtectedFolders::noteKeptIn(const std::filesystem::path& parent) {
    parent_ = parent;
    keepsAllFolders_ = false;
    keptNames_.clear();
    auto folder = parent;
    for (unsigned depth = 0; depth <= maxLevels_; ++depth, folder = folder.parent_path()) {
        const auto status = files::statusOf(folder);
        for (const auto& holder : holders_) {
            if (!isLocatedAt(holder.location, folder, status)) {
                continue;
            }
            keepsAllFolders_ = keepsAllFolders_ || depth < holder.folder.levels;
            if (depth == holder.folder.levels && !holder.folder.name.empty()) {
                keptNames_.emplace_back(holder.folder.name);
            }
        }
    }
}

// By path too: a folder on a volume that does not answer has no inode to compare.
bool ProtectedFolders::isOneOrHoldsOne(const std::filesystem::path& path, const files::NodeStatus& item) const {
    const auto beginning = (path / "").native();
    return item.kind == files::NodeKind::directory &&
           std::any_of(locations_.begin(), locations_.end(), [&](const platform::FolderLocation& location) {
               return (location.resolved / "").native().starts_with(beginning) ||
                      std::find(location.folders.begin(), location.folders.end(), item.identity) !=
                          location.folders.end();
           });
}

// Without "/", which the root remover keeps anyway and takes for no folder that could be named to it.
std::vector<std::filesystem::path> protectedFolders() {
    const ProtectedFolders found;
    std::vector<std::filesystem::path> folders;
    for (const auto& location : found.locations()) {
        if (location.resolved.has_filename()) {
            folders.push_back(location.resolved);
        }
    }
    return folders;
}

}  // namespace brimvault::engine
