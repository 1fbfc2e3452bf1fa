#include "engine/removal/TrashOfVolume.h"

#include <unistd.h>

#include <cerrno>
#include <string>

#include "files/Create.h"
#include "platform/FolderLocations.h"
#include "platform/LibraryURLs.h"
#include "platform/System.h"
#include "platform/TrashFolders.h"

// The rules of freedesktop.org for the Trash, version 1.0.

namespace brimvault::engine {

namespace {

namespace fs = std::filesystem;
using files::DirectoryHandle;
using Folder = files::Result<DirectoryHandle>;
using Trash = files::Result<TrashOfVolume>;

// What a rename stays within: one file system, and one mount of it.
bool isOnSameVolume(const files::NodeStatus& one, const files::NodeStatus& other) {
    return one.identity.device == other.identity.device && one.mount == other.mount;
}

// Of the deepest folder of the path that exists.
files::Result<files::NodeStatus> statusOfNearest(fs::path folder) {
    auto status = files::statusOf(folder);
    while (!status && folder.has_relative_path()) {
        folder = folder.parent_path();
        status = files::statusOf(folder);
    }
    return status;
}

fs::path topOfVolume(fs::path folder, const files::NodeStatus& status) {
    while (folder.has_relative_path()) {
        const auto parent = files::statusOf(folder.parent_path());
        if (!parent || !isOnSameVolume(*parent, status)) {
            break;
        }
        folder = folder.parent_path();
    }
    return folder;
}

Trash openIn(const fs::path& folder, const fs::path& top, Folder (*open)(const fs::path&)) {
    const auto trash = open(folder);
    const auto status = trash ? trash->status() : files::Result<files::NodeStatus>::failed(trash.code());
    if (!status || status->owner != ::geteuid()) {
        return Trash::failed(status ? EPERM : status.code());
    }
    auto items = open(folder / "files");
    auto records = open(folder / "info");
    if (!items || !records) {
        return Trash::failed(items ? records.code() : items.code());
    }
    return TrashOfVolume{folder, top, {std::move(*items), std::move(*records)}};
}

bool isSharedTrash(const fs::path& folder) {
    const auto status = files::statusOf(folder);
    return status && status->kind == files::NodeKind::directory && platform::TrashFolders::isSharedByUsers(folder);
}

// A trial has no volumes but those below its own root.
bool isOutsideOfTrial(const fs::path& top) {
    const auto root = platform::systemRoot();
    std::error_code unresolved;
    return root != "/" && !platform::holds(fs::weakly_canonical(root, unresolved), top);
}

Trash openAtTop(const fs::path& top) {
    if (isOutsideOfTrial(top)) {
        return Trash::failed(EXDEV);
    }
    const auto user = std::to_string(::geteuid());
    if (const auto shared = top / ".Trash"; isSharedTrash(shared)) {
        if (auto trash = openIn(shared / user, top, files::openOrMakeFolder)) {
            return trash;
        }
    }
    return openIn(top / (".Trash-" + user), top, files::openOrMakeFolder);
}

}  // namespace

Trash TrashOfVolume::open(const DirectoryHandle& holder, const fs::path& holderPath) {
    const auto status = holder.status();
    if (!status) {
        return Trash::failed(status.code());
    }
    const auto home = platform::LibraryURLs::getDesktopTrashFolderURL();
    const auto nearest = home ? statusOfNearest(*home) : files::Result<files::NodeStatus>::failed(ENOENT);
    return nearest && isOnSameVolume(*nearest, *status) ? openIn(*home, {}, files::openOrMakeFolder)
                                                        : openAtTop(topOfVolume(holderPath, *status));
}

Trash TrashOfVolume::openAgain(const fs::path& folder) {
    return openIn(folder, {}, [](const fs::path& path) { return DirectoryHandle::open(path); });
}

}  // namespace brimvault::engine
