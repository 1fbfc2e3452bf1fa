#include "cleaner-tool/TrashMove.h"

#include "files/DirectoryHandle.h"
#include "files/removal/TrashEntries.h"

namespace brimvault::cleaner {

namespace {

using files::DirectoryHandle;

std::optional<DirectoryHandle> openFolderOf(const Requester& requester, const std::filesystem::path& folder) {
    auto handle = DirectoryHandle::open(
        folder, [&](const auto& passed, const auto& status) { return requester.maySearch(passed, status); });
    const auto status = handle ? handle->status() : files::Result<files::NodeStatus>::failed(handle.code());
    return status && status->owner == requester.user ? std::optional(std::move(*handle)) : std::nullopt;
}

bool isOnMountOf(const DirectoryHandle& folder, const files::NodeStatus& node) {
    const auto status = folder.status();
    return status && status->mount == node.mount;
}

}  // namespace

std::filesystem::path trashOfHome(const std::filesystem::path& home) { return home / ".local" / "share" / "Trash"; }

std::optional<std::filesystem::path> moveToTrash(const std::filesystem::path& path, const std::filesystem::path& trash,
                                                 const Requester& requester, files::RemovalGuard& guard) {
    if (!files::isPlainAbsolute(path)) {
        return std::nullopt;
    }
    auto items = openFolderOf(requester, trash / "files");
    auto records = openFolderOf(requester, trash / "info");
    const auto parent = DirectoryHandle::open(
        path.parent_path(), [&](const auto& folder, const auto& passed) { return guard.onWay(folder, passed); });
    if (!items || !records || !parent) {
        return std::nullopt;
    }
    const auto status = files::statusAt(parent->descriptor(), path.filename().c_str());
    if (!status || !isOnMountOf(*parent, *status) || !isOnMountOf(*items, *status) || !guard.mayRemove(*status)) {
        return std::nullopt;
    }
    const auto name = files::moveIntoTrash(*parent, path.filename(), status->identity,
                                           {std::move(*items), std::move(*records)}, path.native());
    return name ? std::optional(trash / "files" / *name) : std::nullopt;
}

}  // namespace brimvault::cleaner
