#include "cleaner-tool/KeptFolders.h"

#include <algorithm>
#include <system_error>

namespace brimvault::cleaner {

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
    std::error_code missing;
    auto path = std::filesystem::canonical(folder.path, missing);
    if (missing) {
        return true;
    }
    set(path, folder.keep);
    while (path.has_relative_path()) {
        path = path.parent_path();
        set(path, Keep::itself);
    }
    return entries_.size() <= mostFolders;
}

void KeptFolders::set(const std::filesystem::path& folder, Keep keep) {
    const auto status = files::statusOf(folder);
    if (!status) {
        return;
    }
    const auto known = std::find_if(entries_.begin(), entries_.end(),
                                    [&](const Entry& entry) { return entry.identity == status->identity; });
    if (known == entries_.end()) {
        entries_.push_back({status->identity, keep});
    } else {
        known->keep = std::max(known->keep, keep);
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
}

bool KeptFoldersGuard::mayRemove(const files::NodeStatus& node) {
    const bool isItem = !isItemAsked_;
    isItemAsked_ = true;
    if (isItem && (nearest_ == Keep::everything || (nearest_ == Keep::deeperMayGo && isNearestParent_))) {
        return false;
    }
    return kept_.find(node.identity) == nullptr;
}

}  // namespace brimvault::cleaner
