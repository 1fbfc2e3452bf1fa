#include "cleaner-tool/PinnedFolder.h"

namespace brimvault::cleaner {

std::optional<PinnedFolder> PinnedFolder::open(const std::filesystem::path& path, uid_t owner) {
    auto handle = files::DirectoryHandle::open(path);
    const auto status = handle ? handle->status() : files::Result<files::NodeStatus>::failed(handle.code());
    if (!status || status->mount == 0 || status->owner != owner) {
        return std::nullopt;
    }
    return PinnedFolder(std::move(*handle), status->place());
}

}  // namespace brimvault::cleaner
