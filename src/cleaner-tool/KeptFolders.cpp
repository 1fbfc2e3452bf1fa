#include "cleaner-tool/KeptFolders.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <system_error>

#include "cleaner-tool/TrashMove.h"

namespace brimvault::cleaner {

namespace {

constexpr std::ptrdiff_t mostNames = 64;  // in a path

bool isMissing(const std::error_code& problem) {
    return problem == std::errc::no_such_file_or_directory || problem == std::errc::not_a_directory;
}

}  // namespace

std::vector<KeptPath> homeFolders(const std::filesystem::path& home) {
    const auto library = home / "Library";
    const auto trash = trashOfHome(home);
    std::vector<KeptPath> folders = {{home, Keep::contentsMayGo}};
    for (const auto& path :
         {library / "Caches", library / "Logs", library / "Containers",
          library / "Application Support" / "CrashReporter", home / "Applications", home / "Downloads", home / ".Trash",
          home / ".cache", home / ".config" / "com.quorvel.brimvault", trash / "files", trash / "info"}) {
        folders.push_back({path, Keep::itself});
    }
    return folders;
}

bool KeptFolders::add(const KeptPath& folder) {
    folders_.push_back({folder, false});
    return folders_.size() <= mostFolders && std::distance(folder.path.begin(), folder.path.end()) <= mostNames;
}

bool KeptFolders::lookUp() {
    bool looked = true;
    Entries now;
    for (auto& folder : folders_) {
        Entries found;
        looked = lookUp(folder.kept, found) && looked;
        for (const auto& entry : found) {
            set(now, entry);
            if (!folder.wasFound) {
                set(first_, entry);
            }
        }
        folder.wasFound = folder.wasFound || !found.empty();
    }
    entries_ = first_;
    for (const auto& entry : now) {
        set(entries_, entry);
    }
    return looked;
}

bool KeptFolders::lookUp(const KeptPath& folder, Entries& found) {
    std::error_code problem;
    auto path = std::filesystem::canonical(folder.path, problem);
    if (problem) {
        return isMissing(problem);
    }
    for (auto keep = folder.keep;; keep = Keep::itself, path = path.parent_path()) {
        const auto status = files::statusOf(path);
        if (!status) {
            return status.code() == ENOENT || status.code() == ENOTDIR;
        }
        found.push_back({status->identity, keep});
        if (!path.has_relative_path()) {
            return true;
        }
    }
}

void KeptFolders::set(Entries& entries, const Entry& entry) {
    const auto known = std::find_if(entries.begin(), entries.end(),
                                    [&](const Entry& other) { return other.identity == entry.identity; });
    if (known == entries.end()) {
        entries.push_back(entry);
    } else {
        known->keep = std::max(known->keep, entry.keep);
    }
}

const Keep* KeptFolders::find(const files::FileIdentity& identity) const {
    const auto entry =
        std::find_if(entries_.begin(), entries_.end(), [&](const Entry& other) { return other.identity == identity; });
    return entry == entries_.end() ? nullptr : &entry->keep;
}

void KeptFoldersGuard::onWay(const files::NodeStatus& folder) {
    const Keep* keep = kept_.find(folder.identity);
    isNearestParent_ = keep != nullptr && *keep != Keep::itself;
    nearest_ = isNearestParent_ ? *keep : nearest_;
    isUsers_ = isUsers_ || folder.owner == kept_.user();
}

bool KeptFoldersGuard::mayRemoveBelowWay() const {
    switch (nearest_) {
        case Keep::contentsMayGo:
            return true;
        case Keep::deeperMayGo:
            return !isNearestParent_ && isUsers_;
        default:
            return false;
    }
}

bool KeptFoldersGuard::mayRemove(const files::NodeStatus& node) {
    const bool isItem = !isItemAsked_;
    isItemAsked_ = true;
    return isSound_ && (!isItem || mayRemoveBelowWay()) && kept_.find(node.identity) == nullptr;
}

}  // namespace brimvault::cleaner
