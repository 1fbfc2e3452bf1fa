#include "files/TreeWalk.h"

#include <cerrno>
#include <vector>

namespace brimvault::files {

bool TreeWalk::visit(const DirectoryHandle& parent, const char* name) {
    enter(parent, name);
    while (auto* top = stack_.topItem()) {
        if (stop_.stop_requested()) {
            return false;
        }
        const std::string next = top->fsref.takePendingFolder();
        if (next.empty()) {
            if (!leave(parent)) {
                return true;
            }
        } else if (visitor_.wantsFolder(top->fsref.handle, next.c_str())) {
            enter(top->fsref.handle, next);
        }
    }
    return !stop_.stop_requested();
}

void TreeWalk::enter(const DirectoryHandle& parent, const std::string& name) {
    auto opened = parent.openChild(name.c_str());
    if (!opened && (opened.code() == ENOTDIR || opened.code() == ELOOP)) {
        visitor_.onFile(parent, name.c_str());  // exchanged for something else since it was listed
        return;
    }
    if (!opened) {
        visitor_.onFolderClosed(parent, name.c_str(), opened.code());
        return;
    }
    const NodeStatus status = opened->status();
    if (!visitor_.entersFolder(status, name.c_str())) {
        return;
    }
    visitor_.onFolderEntered(status);
    stack_.pushItem(std::make_unique<StackItem>(FolderReference{name, status, std::move(*opened), {}}));
    closeFarthest();
    if (const int code = listEntries(stack_.topItem()->fsref); code != 0) {
        visitor_.onListingBroken(code);
    }
}

// The names are read to the end before anything is done to them: a directory that changes under its listing may show
// an entry twice or not at all.
int TreeWalk::listEntries(FolderReference& folder) {
    std::string files;
    const int code = folder.handle.forEachEntry([&](const DirectoryEntry& entry) {
        auto& names = entry.kind == NodeKind::directory ? folder.pendingFolders : files;
        names.append(entry.name).push_back('\0');
        return !stop_.stop_requested();
    });
    for (std::size_t start = 0; start < files.size() && !stop_.stop_requested();) {
        const char* name = files.c_str() + start;
        visitor_.onFile(folder.handle, name);
        start += std::char_traits<char>::length(name) + 1;
    }
    return code;
}

void TreeWalk::closeFarthest() {
    StackItem* item = stack_.topItem();
    for (int step = 0; item != nullptr && step < heldFolders; ++step) {
        item = item->prevItem.get();
    }
    if (item != nullptr) {
        item->fsref.handle.close();
    }
}

bool TreeWalk::leave(const DirectoryHandle& outermost) {
    const auto left = stack_.popItem();
    auto* below = stack_.topItem();
    if (below != nullptr && !below->fsref.handle.isOpen()) {
        auto reopened = left->fsref.handle.openParent(below->fsref.status);
        if (!reopened) {
            visitor_.onWayLost(left->fsref.name.c_str(), reopened.code());
            return false;
        }
        below->fsref.handle = std::move(*reopened);
    }
    visitor_.onFolderLeft(below == nullptr ? outermost : below->fsref.handle, left->fsref.name.c_str());
    return true;
}

std::filesystem::path TreeWalk::position() const {
    std::vector<const std::string*> names;
    for (const auto* item = stack_.topItem(); item != nullptr; item = item->prevItem.get()) {
        names.push_back(&item->fsref.name);
    }
    std::filesystem::path path;
    for (auto name = names.rbegin(); name != names.rend(); ++name) {
        path /= **name;
    }
    return path;
}

}  // namespace brimvault::files
