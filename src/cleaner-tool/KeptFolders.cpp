#include "cleaner-tool/KeptFolders.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <system_error>

#include "cleaner-tool/SymbolicLinks.h"
#include "cleaner-tool/TrashMove.h"

namespace brimvault::cleaner {

namespace {

constexpr std::ptrdiff_t maxNames = 64;  // in a path

bool isMissing(int code) { return code == ENOENT || code == ENOTDIR; }

// A FUSE volume refuses every user but its own, root too; one whose server has ended refuses all.
bool isClosedVolume(int code) { return code == EACCES || code == ENOTCONN; }

}  // namespace

std::vector<std::filesystem::path> sectionFoldersOf(const std::filesystem::path& home) {
    const auto library = home / "Library";
    const auto trash = trashOfHome(home);
    return {library / "Caches",
            library / "Logs",
            library / "Containers",
            library / "Application Support" / "CrashReporter",
            home / "Applications",
            home / "Downloads",
            home / ".Trash",
            home / ".cache",
            home / ".config" / "com.quorvel.brimvault",
            trash / "files",
            trash / "info"};
}

bool KeptFolders::add(const KeptPath& folder) {
    folders_.push_back({folder, false});
    return folders_.size() <= maxFolders && folder.keep != Keep::contentsMayGo &&
           std::distance(folder.path.begin(), folder.path.end()) <= maxNames;
}

bool KeptFolders::lookUp() {
    bool areAllKnown = true;
    Entries now;
    for (auto& folder : folders_) {
        Entries found;
        areAllKnown = lookUp(folder.kept, found) && areAllKnown;
        for (const auto& entry : found) {
            set(now, entry);
            if (!folder.wasFound) {
                set(firstFound_, entry);
            }
        }
        folder.wasFound = folder.wasFound || !found.empty();
    }
    entries_ = firstFound_;
    for (const auto& entry : now) {
        set(entries_, entry);
    }
    return areAllKnown;
}

bool KeptFolders::lookUp(const KeptPath& folder, Entries& found) const {
    auto path = folder.path;
    if (folder.links == LinksOnWay::follow) {
        std::error_code error;
        path = std::filesystem::canonical(folder.path, error);
        if (error) {
            return isMissing(error.value());
        }
    }
    auto isOpen = open(path, folder.links, found);
    if (isOpen.code() == ENOTDIR && folder.links == LinksOnWay::followVisible) {
        isOpen = open(withoutVisibleLinks(path, requester_), folder.links, found);
    }
    if (!isOpen) {
        return isMissing(isOpen.code()) || isClosedVolume(isOpen.code());
    }
    if (*isOpen) {  // else it is kept as far as the user can see it
        found.back().keep = folder.keep;
        found.back().below = folder.below;
    }
    return true;
}

files::Result<bool> KeptFolders::open(const std::filesystem::path& path, LinksOnWay links, Entries& found) const {
    bool isClosed = false;
    found.clear();
    const auto opened = files::DirectoryHandle::open(path, [&](const auto& handle, const auto& status) {
        found.push_back({status.identity, Keep::itself, {}});
        isClosed = links != LinksOnWay::follow && !requester_.maySearch(handle, status);
        return !isClosed;
    });
    if (!opened && !isClosed) {
        found.clear();
        return files::Result<bool>::failed(opened.code());
    }
    return !isClosed;
}

void KeptFolders::set(Entries& entries, const Entry& entry) {
    const auto known = std::find_if(entries.begin(), entries.end(),
                                    [&](const Entry& other) { return other.identity == entry.identity; });
    if (known == entries.end()) {
        entries.push_back(entry);
    } else {
        known->keep = std::max(known->keep, entry.keep);
        known->below = std::max(known->below, entry.below);
    }
}

const KeptFolders::Entry* KeptFolders::entryOf(const files::FileIdentity& identity) const {
    const auto entry =
        std::find_if(entries_.begin(), entries_.end(), [&](const Entry& other) { return other.identity == identity; });
    return entry == entries_.end() ? nullptr : &*entry;
}

std::optional<Keep> KeptFolders::keepOf(const files::NodeStatus& folder) const {
    const auto* const entry = entryOf(folder.identity);
    const auto listed = entry == nullptr ? std::nullopt : std::optional(entry->keep);
    const bool isPinned =
        std::any_of(pinned_.begin(), pinned_.end(), [&](const PinnedFolder& pinned) { return pinned.is(folder); });
    return isPinned ? std::max(listed, std::optional(Keep::contentsMayGo)) : listed;
}

KeptBelow KeptFolders::belowOf(const files::NodeStatus& folder) const {
    const auto* const entry = entryOf(folder.identity);
    return entry == nullptr ? KeptBelow() : entry->below;
}

bool KeptFoldersGuard::onWay(const files::DirectoryHandle& folder, const files::NodeStatus& status) {
    if (status.mount == 0 || !kept_.requester().maySearch(folder, status)) {
        return false;
    }
    if (mount_ && *mount_ != status.mount) {
        beginMount();
    }
    mount_ = status.mount;
    folder_ = status.identity;
    const auto keep = kept_.keepOf(status);
    isNearestParent_ = keep && *keep != Keep::itself;
    nearest_ = isNearestParent_ ? *keep : nearest_;
    isBelowUsersFolder_ = isBelowUsersFolder_ || status.owner == kept_.requester().user;
    noteKeptBelow(folder, status);
    return true;
}

void KeptFoldersGuard::noteKeptBelow(const files::DirectoryHandle& folder, const files::NodeStatus& status) {
    const auto inherited = below_.levels == 0 ? KeptBelow() : KeptBelow{below_.levels - 1, below_.name};
    below_ = std::max(inherited, kept_.belowOf(status));
    namedChild_.reset();
    if (below_.levels == 0 && !below_.name.empty()) {
        const auto child = files::statusAt(folder.descriptor(), below_.name.c_str());
        namedChild_ = child ? std::optional(child->identity) : std::nullopt;
    }
}

bool KeptFoldersGuard::isKeptBelow(const files::NodeStatus& item) const {
    const bool isFolderOrLink = item.kind == files::NodeKind::directory || item.kind == files::NodeKind::link;
    return isFolderOrLink && (below_.levels > 0 || namedChild_ == item.identity);
}

void KeptFoldersGuard::beginMount() {
    nearest_ = std::max(nearest_, Keep::deeperMayGo);
    isBelowUsersFolder_ = false;
}

bool KeptFoldersGuard::mayRemoveItem(const files::NodeStatus& item) const {
    if ((expectedFolder_ && folder_ != *expectedFolder_) || isKeptBelow(item)) {
        return false;
    }
    switch (nearest_) {
        case Keep::contentsMayGo:
            return true;
        case Keep::deeperMayGo:
            return !isNearestParent_ && isBelowUsersFolder_;
        default:
            return false;
    }
}

bool KeptFoldersGuard::mayRemove(const files::NodeStatus& node) {
    const bool isItem = !isItemAsked_;
    isItemAsked_ = true;
    return isValid_ && (!isItem || mayRemoveItem(node)) && !kept_.keepOf(node);
}

}  // namespace brimvault::cleaner
