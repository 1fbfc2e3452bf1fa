#include "cleaner-tool/KeptFolders.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <system_error>

namespace brimvault::cleaner {

namespace {

constexpr std::ptrdiff_t mostNames = 64;   // in a path
constexpr std::size_t mostEntries = 4096;  // that a folder has been, over time, all of them together

bool isMissing(const std::error_code& problem) {
    return problem == std::errc::no_such_file_or_directory || problem == std::errc::not_a_directory;
}

}  // namespace

std::vector<KeptPath> homeFolders(const std::filesystem::path& home) {
    const auto library = home / "Library";
    const auto trash = home / ".local" / "share" / "Trash";
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
    folders_.push_back(folder);
    return folders_.size() <= mostFolders && std::distance(folder.path.begin(), folder.path.end()) <= mostNames;
}

bool KeptFolders::lookUp() {
    bool looked = true;
    holders_.clear();
    for (const auto& [folder, keep] : folders_) {
        std::error_code problem;
        auto path = std::filesystem::canonical(folder, problem);
        if (problem) {
            looked = looked && isMissing(problem);
            continue;
        }
        looked = looked && set(entries_, path, keep);
        while (path.has_relative_path()) {
            path = path.parent_path();
            looked = looked && set(holders_, path, Keep::itself);
        }
    }
    return looked && entries_.size() <= mostEntries;
}

bool KeptFolders::set(Entries& entries, const std::filesystem::path& folder, Keep keep) {
    const auto status = files::statusOf(folder);
    if (!status) {
        return status.code() == ENOENT || status.code() == ENOTDIR;
    }
    const auto known = std::find_if(entries.begin(), entries.end(),
                                    [&](const Entry& entry) { return entry.identity == status->identity; });
    if (known == entries.end()) {
        entries.push_back({status->identity, keep});
    } else {
        known->keep = std::max(known->keep, keep);
    }
    return true;
}

const Keep* KeptFolders::find(const files::FileIdentity& identity) const {
    for (const auto* entries : {&entries_, &holders_}) {
        const auto known = std::find_if(entries->begin(), entries->end(),
                                        [&](const Entry& entry) { return entry.identity == identity; });
        if (known != entries->end()) {
            return &known->keep;
        }
    }
    return nullptr;
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
