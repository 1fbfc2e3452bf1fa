#include "files/Measure.h"

#include <optional>
#include <system_error>

#include "files/TreeWalk.h"

namespace brimvault::files {

namespace {

// A file can be a mount point as well as a folder. A mount that the system does not tell counts as the folder's.
bool isOnMountOf(const DirectoryHandle& folder, const NodeStatus& status) {
    return status.mount == 0 || status.mount == folder.status().mount;
}

class SizeVisitor final : public TreeVisitor {
public:
    void onFolderEntered(const NodeStatus& folder) override {
        if (entered_) {  // the top folder's own entry is not part of its contents
            sizes.folders += folder.size;
        }
        entered_ = true;
    }
    void onFile(const DirectoryHandle& folder, const char* name) override {
        if (const auto status = statusAt(folder.descriptor(), name); status && isOnMountOf(folder, *status)) {
            sizes.logical += status->size;
            sizes.allocated += status->allocated;
            sizes.regularFiles += status->kind == NodeKind::regular ? status->size : 0;
        }
    }
    void onFolderClosed(const DirectoryHandle&, const char*, int) override {}
    void onListingBroken(int) override {}
    void onWayLost(const char*, int) override {}

    TreeSizes sizes;

private:
    bool entered_ = false;
};

// An item as its folder, held, and its name there.
struct HeldItem {
    DirectoryHandle folder;
    std::filesystem::path name;
};

std::optional<HeldItem> hold(const std::filesystem::path& given) {
    std::error_code ignored;
    auto path = std::filesystem::absolute(given, ignored).lexically_normal();
    if (!path.has_filename()) {
        path = path.parent_path();  // a trailing slash
    }
    auto folder = DirectoryHandle::open(path.parent_path());
    if (!folder) {
        return std::nullopt;
    }
    return HeldItem{std::move(*folder), path.has_filename() ? path.filename() : "."};
}

// A mount point belongs to another file system: nothing of it counts.
std::optional<NodeStatus> statusOnMountOf(const DirectoryHandle& folder, const char* name) {
    const auto status = statusAt(folder.descriptor(), name);
    return status && isOnMountOf(folder, *status) ? std::optional(*status) : std::nullopt;
}

TreeSizes measureFolder(const DirectoryHandle& parent, const char* name, const std::stop_token& stop) {
    SizeVisitor visitor;
    (void)TreeWalk(visitor, stop).visit(parent, name);
    return visitor.sizes;
}

}  // namespace

TreeSizes measureContents(const std::filesystem::path& folder, const std::stop_token& stop) {
    const auto item = hold(folder);
    const auto status = item ? statusOnMountOf(item->folder, item->name.c_str()) : std::nullopt;
    const bool isFolder = status && status->kind == NodeKind::directory;
    return isFolder ? measureFolder(item->folder, item->name.c_str(), stop) : TreeSizes{};
}

std::uint64_t measureItem(const std::filesystem::path& path, const std::stop_token& stop) {
    const auto item = hold(path);
    return item ? measureItemAt(item->folder, item->name.c_str(), stop) : 0;
}

std::uint64_t measureItemAt(const DirectoryHandle& folder, const char* name, const std::stop_token& stop) {
    const auto status = statusOnMountOf(folder, name);
    if (!status) {
        return 0;
    }
    return status->kind == NodeKind::directory ? measureFolder(folder, name, stop).logical : status->size;
}

}  // namespace brimvault::files
