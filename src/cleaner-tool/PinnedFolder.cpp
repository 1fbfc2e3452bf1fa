#include "cleaner-tool/PinnedFolder.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <iterator>

namespace brimvault::cleaner {

namespace {

constexpr uid_t root = 0;

bool isChangedByRootOnly(const files::NodeStatus& node) {
    constexpr std::uint32_t writableByOthers = 022;
    const bool isWritable = node.kind != files::NodeKind::link && (node.permissions & writableByOthers) != 0;
    return node.owner == root && !isWritable;
}

// The target of a symbolic link that only root can change, as it stands there; none for anything else.
std::optional<std::filesystem::path> systemLinkAt(const std::filesystem::path& folder, const char* name) {
    const auto holder = files::DirectoryHandle::open(folder);
    const auto holderStatus = holder ? holder->status() : files::Result<files::NodeStatus>::failed(holder.code());
    if (!holderStatus || !isChangedByRootOnly(*holderStatus)) {
        return std::nullopt;
    }
    const auto status = files::statusAt(holder->descriptor(), name);
    std::array<char, PATH_MAX> target{};
    const ssize_t length = ::readlinkat(holder->descriptor(), name, target.data(), target.size());
    const bool isWhole = length > 0 && length < static_cast<ssize_t>(target.size());
    return status && isChangedByRootOnly(*status) && isWhole
               ? std::optional<std::filesystem::path>(std::string(target.data(), static_cast<std::size_t>(length)))
               : std::nullopt;
}

struct SplitPath {
    std::filesystem::path opened;
    std::filesystem::path rest;  ///< from the first name on that is a symbolic link or missing
};

SplitPath openAsFarAsPossible(const std::filesystem::path& path) {
    SplitPath split{"/", {}};
    for (const auto& name : path.relative_path()) {
        const bool isOpened = split.rest.empty() && files::DirectoryHandle::open(split.opened / name);
        if (!name.empty()) {  // a trailing slash makes an empty name
            (isOpened ? split.opened : split.rest) /= name;
        }
    }
    return split;
}

}  // namespace

std::optional<PinnedFolder> PinnedFolder::open(const std::filesystem::path& path, uid_t owner) {
    auto handle = files::DirectoryHandle::open(path);
    const auto status = handle ? handle->status() : files::Result<files::NodeStatus>::failed(handle.code());
    if (!status || status->mount == 0 || status->owner != owner) {
        return std::nullopt;
    }
    return PinnedFolder(std::move(*handle), status->place());
}

std::optional<std::filesystem::path> withoutSystemLinks(const std::filesystem::path& path) {
    constexpr int maxLinks = 40;  // as many as the kernel follows
    auto resolved = path;
    for (int links = 0; links <= maxLinks; ++links) {
        const auto [opened, rest] = openAsFarAsPossible(resolved);
        if (rest.empty()) {
            return opened;
        }
        const auto target = systemLinkAt(opened, rest.begin()->c_str());
        if (!target) {
            return std::nullopt;
        }
        resolved = (opened / *target).lexically_normal();
        std::for_each(std::next(rest.begin()), rest.end(), [&](const auto& name) { resolved /= name; });
    }
    return std::nullopt;
}

}  // namespace brimvault::cleaner
