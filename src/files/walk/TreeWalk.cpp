#include "files/walk/TreeWalk.h"

#include <algorithm>
#include <cerrno>

// How several walks visit one tree
//
// Work stealing. Each walk has a private stack and takes no lock per folder. When a worker is idle, the walk splits off
// half of the pending entries of its bottom-most stack frame, subfolders or, where there are very many, files, and
// hands them over together with an open descriptor of that folder.
//
// Such a folder is finished in parts, which VisitedFolder::parts counts. A walk that has finished its own part before
// the others goes on in the parent folder. The walk that finishes the last part reports the folder as left; as the
// folder was one part of its parent, it may then finish the parent too, and so on up the tree.

namespace brimvault::files {

namespace {

constexpr int entriesBetweenStops = 64;

// From this many on, the files of a folder are visited in the order of their inodes, which on most file systems is the
// order on the disk; a listing has no order. They are visited in parts, between which some may be given away.
constexpr std::size_t sortedFiles = 1000;
constexpr int filesOfAPart = 64;

// Needed before the folder's handle is closed, to recognize the folder when it is reopened.
bool makeKnown(FolderReference& folder) {
    if (!folder.folder->place) {
        if (const auto status = folder.handle.status()) {
            folder.folder->place = status->place();
        }
    }
    return folder.folder->place.has_value();
}

// The folder and all that hold it.
bool makeKnownWithHolders(StackItem& from) {
    bool areKnown = true;
    for (auto* item = &from; item != nullptr; item = item->prevItem.get()) {
        areKnown = makeKnown(item->fsref) && areKnown;
    }
    return areKnown;
}

// Whether the part of a folder that ends here was its last; if not, it is left to others, as a part of its holder.
bool wasLastPart(VisitedFolder& folder, VisitedFolder& holder) {
    if (folder.parts.load(std::memory_order_acquire) == 1) {
        return true;  // only who works in it could give a part away
    }
    holder.parts.fetch_add(1, std::memory_order_relaxed);
    const bool wasLast = folder.parts.fetch_sub(1, std::memory_order_acq_rel) == 1;
    if (wasLast) {
        holder.parts.fetch_sub(1, std::memory_order_relaxed);
    }
    return wasLast;
}

bool isOutOfDescriptors(int code) { return code == EMFILE || code == ENFILE; }

// A folder with this many entries counts as two.
constexpr int entriesLikeAFolder = 16;

}  // namespace

bool TreeWalk::visit(const char* name) {
    if (stop_.stop_requested()) {
        return false;
    }
    enter(outermost_, name, nullptr);
    return visitPending();
}

bool TreeWalk::visitShare(FolderReference share) {
    stack_.clearStack();  // of what was not finished
    stack_.pushItem(std::make_unique<StackItem>(std::move(share)));
    return visitPending();
}

bool TreeWalk::visitPending() {
    while (auto* top = stack_.topItem()) {
        if (stop_.stop_requested()) {
            return false;
        }
        if (sharing_ != nullptr && sharing_->isShareWanted()) {
            shareWork();
        }
        visitor_.setPlace(top->fsref.folder.get());
        if (!top->fsref.pendingFiles.files.empty()) {
            visitPendingFiles(top->fsref);
            continue;
        }
        std::string next = top->fsref.takePendingFolder();
        if (next.empty()) {
            if (!leave()) {
                return true;
            }
        } else if (visitor_.wantsFolder(top->fsref.handle, next.c_str())) {
            enter(top->fsref.handle, std::move(next), top->fsref.folder);
        }
    }
    return !stop_.stop_requested();
}

void TreeWalk::enter(const DirectoryHandle& parent, std::string name, const std::shared_ptr<VisitedFolder>& holder) {
    const bool canHoldIt = holdNoMoreThan(maxOpenFolders - 1) < maxOpenFoldersOnWayBack;
    auto opened = canHoldIt ? open(parent, name.c_str()) : Result<DirectoryHandle>::failed(EMFILE);
    if (!opened && opened.code() == ENOTDIR) {
        visitor_.onFile(parent, name.c_str(), NodeKind::link);  // replaced by something else since it was listed
    } else if (!opened) {
        visitor_.onFolderClosed(parent, name.c_str(), opened.code());
    } else if (visitor_.entersFolder(*opened, name.c_str())) {
        begin(std::move(*opened), std::make_shared<VisitedFolder>(std::move(name), holder));
    }
}

// When the process runs out of descriptors, the walk closes its own and tries once more.
Result<DirectoryHandle> TreeWalk::open(const DirectoryHandle& parent, const char* name) {
    const auto openOnce = [&] {
        auto opened = parent.openChild(name);
        return opened.code() == EACCES ? visitor_.openRefused(parent, name) : std::move(opened);
    };
    auto opened = openOnce();
    if (!opened && isOutOfDescriptors(opened.code())) {
        holdNoMoreThan(1);
        opened = openOnce();
    }
    return opened;
}

void TreeWalk::begin(DirectoryHandle handle, std::shared_ptr<VisitedFolder> folder) {
    stack_.pushItem(std::make_unique<StackItem>(FolderReference{std::move(folder), std::move(handle), {}}));
    auto& entered = stack_.topItem()->fsref;
    visitor_.setPlace(entered.folder.get());
    visitor_.onFolderEntered(entered.handle);
    entered.folder->listingCode = listEntries(entered);
    const bool wasLarge = seen_ >= largeTree;
    seen_ += 1 + listed_ / entriesLikeAFolder;
    if (!wasLarge && seen_ >= largeTree && sharing_ != nullptr) {
        sharing_->onLargeTree();
    }
}

int TreeWalk::listEntries(FolderReference& folder) {
    return visitor_.fileVisits() == FileVisits::whileListing ? visitFilesWhileListing(folder)
                                                             : visitFilesAfterListing(folder);
}

int TreeWalk::visitFilesWhileListing(FolderReference& folder) {
    listed_ = 0;
    return reader_.forEachEntry(folder.handle.descriptor(), [&](const DirectoryEntry& entry) {
        if (entry.kind == NodeKind::directory) {
            folder.pendingFolders.append(entry.name).push_back('\0');
        } else {
            visitor_.onFile(folder.handle, entry.name, entry.kind);
        }
        return ++listed_ % entriesBetweenStops != 0 || !stop_.stop_requested();
    });
}

int TreeWalk::visitFilesAfterListing(FolderReference& folder) {
    ListedFiles listed;
    std::string entries;
    listed_ = 0;
    const int code = reader_.forEachEntry(folder.handle.descriptor(), [&](const DirectoryEntry& entry) {
        if (entry.kind == NodeKind::directory) {
            folder.pendingFolders.append(entry.name).push_back('\0');
        } else {
            listed.files.push_back({entry.inode, entries.size()});
            entries.append(1, static_cast<char>(entry.kind)).append(entry.name).push_back('\0');
        }
        return ++listed_ % entriesBetweenStops != 0 || !stop_.stop_requested();
    });
    if (listed.files.size() >= sortedFiles) {
        std::sort(listed.files.begin(), listed.files.end(),
                  [](const auto& left, const auto& right) { return left.inode > right.inode; });  // taken from the end
        listed.entries = std::make_shared<const std::string>(std::move(entries));
        folder.pendingFiles = std::move(listed);
        return code;
    }
    for (const auto& file : listed.files) {
        if (stop_.stop_requested()) {
            break;
        }
        visitFile(folder, entries.c_str() + file.place);
    }
    return code;
}

void TreeWalk::visitFile(const FolderReference& folder, const char* entry) {
    visitor_.onFile(folder.handle, entry + 1, static_cast<NodeKind>(*entry));
}

void TreeWalk::visitPendingFiles(FolderReference& folder) {
    auto& pending = folder.pendingFiles;
    for (int count = 0; count < filesOfAPart && !pending.files.empty() && !stop_.stop_requested(); ++count) {
        const auto place = pending.files.back().place;
        pending.files.pop_back();
        visitFile(folder, pending.entries->c_str() + place);
    }
    if (pending.files.empty()) {
        pending = {};  // frees the names before the subfolders are visited
    }
}

// Keeps the innermost folders open, and those that could not be recognized again. Answers how many are open.
int TreeWalk::holdNoMoreThan(int folders) {
    int open = 0;
    StackItem* item = stack_.topItem();
    for (; item != nullptr && open < folders; ++open) {
        item = item->prevItem.get();
    }
    // The parents of a closed folder are closed.
    for (; item != nullptr && item->fsref.handle.isOpen(); item = item->prevItem.get()) {
        if (mayClose(item->fsref)) {
            item->fsref.handle.close();
        } else {
            ++open;
        }
    }
    return open;
}

bool TreeWalk::mayClose(FolderReference& folder) const {
    return makeKnown(folder) &&
           (visitor_.wayBack() == WayBack::byNumber || folder.folder->place->identity.born.has_value());
}

// Splits the outermost open folder that has pending entries. The victim always keeps at least one entry; otherwise two
// idle workers could pass the last folder back and forth (livelock).
void TreeWalk::shareWork() {
    StackItem* from = nullptr;
    bool hasMore = false;
    for (auto* item = stack_.topItem(); item != nullptr && item->fsref.handle.isOpen(); item = item->prevItem.get()) {
        if (item->fsref.hasPending()) {
            hasMore = from != nullptr;
            from = item;
        }
    }
    if (from == nullptr || (!hasMore && !from->fsref.canBeHalved())) {
        return;
    }
    auto handle = from->fsref.handle.duplicate();
    if (!handle || !makeKnownWithHolders(*from)) {
        return;
    }
    from->fsref.folder->parts.fetch_add(1, std::memory_order_relaxed);
    sharing_->give(from->fsref.takeHalf(std::move(*handle)));
}

bool TreeWalk::leave() {
    const auto left = stack_.popItem();
    auto* top = stack_.topItem();
    if (top == nullptr) {
        return leaveLast(std::move(left->fsref));
    }
    auto& holder = top->fsref;
    visitor_.setPlace(holder.folder.get());
    if (!returnTo(holder, left->fsref)) {
        return false;
    }
    if (wasLastPart(*left->fsref.folder, *holder.folder)) {
        visitor_.onFolderLeft(holder.handle, *left->fsref.folder, left->fsref.handle);
    }
    return true;
}

bool TreeWalk::returnTo(FolderReference& holder, const FolderReference& left) {
    if (holder.handle.isOpen()) {
        return true;
    }
    auto reopened = left.handle.openParent(*holder.folder->place);
    if (!reopened && isOutOfDescriptors(reopened.code())) {
        holdNoMoreThan(0);
        reopened = left.handle.openParent(*holder.folder->place);
    }
    if (!reopened) {
        visitor_.onWayLost(left.folder->name.c_str(), reopened.code());
        stack_.clearStack();
        return false;
    }
    holder.handle = std::move(*reopened);
    return true;
}

// The last folder of this walk, though perhaps not of the tree: goes up as long as this walk finishes the last part.
bool TreeWalk::leaveLast(FolderReference left) {
    while (left.folder->parts.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        const auto holder = left.folder->holder;
        visitor_.setPlace(holder.get());
        if (holder == nullptr) {
            visitor_.onFolderLeft(outermost_, *left.folder, left.handle);
            return true;
        }
        auto handle = left.handle.openParent(holder->place.value_or(NodePlace()));
        if (!handle) {
            visitor_.onWayLost(left.folder->name.c_str(), handle.code());
            return false;
        }
        visitor_.onFolderLeft(*handle, *left.folder, left.handle);
        left = FolderReference{holder, std::move(*handle), {}};
    }
    return true;
}

}  // namespace brimvault::files
