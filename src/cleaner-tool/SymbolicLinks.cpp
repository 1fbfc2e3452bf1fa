#include "cleaner-tool/SymbolicLinks.h"

#include <unistd.h>

#include <array>
#include <climits>
#include <deque>
#include <functional>
#include <string>

#include "files/DirectoryHandle.h"

namespace brimvault::cleaner {

namespace {

using files::DirectoryHandle;

constexpr uid_t root = 0;

bool isChangedByRootOnly(const files::NodeStatus& node) {
    constexpr std::uint32_t writableByOthers = 022;
    const bool isWritable = node.kind != files::NodeKind::link && (node.permissions & writableByOthers) != 0;
    return node.owner == root && !isWritable;
}

// Of a symbolic link in an open folder, as it stands there; none for anything else.
std::optional<std::filesystem::path> targetOf(const DirectoryHandle& holder, const char* name) {
    std::array<char, PATH_MAX> target{};
    const ssize_t length = ::readlinkat(holder.descriptor(), name, target.data(), target.size());
    const bool isWhole = length > 0 && length < static_cast<ssize_t>(target.size());
    return isWhole ? std::optional<std::filesystem::path>(std::string(target.data(), static_cast<std::size_t>(length)))
                   : std::nullopt;
}

// The target of a link that only root can change.
std::optional<std::filesystem::path> systemLinkAt(const DirectoryHandle& holder, const char* name) {
    const auto holderStatus = holder.status();
    const auto status = files::statusAt(holder.descriptor(), name);
    const bool isSystems = holderStatus && status && isChangedByRootOnly(*holderStatus) && isChangedByRootOnly(*status);
    return isSystems ? targetOf(holder, name) : std::nullopt;
}

using LinkReader = std::function<std::optional<std::filesystem::path>(const DirectoryHandle&, const char*)>;

struct Resolution {
    std::filesystem::path opened = "/";      ///< without links
    std::deque<std::filesystem::path> rest;  ///< from the first name on that could not be opened or resolved
};

// Name by name, since ".." after a link is the parent of its target.
Resolution resolve(const std::filesystem::path& path, const LinkReader& linkAt, const DirectoryHandle::OnWay& onWay) {
    constexpr int maxLinks = 40;  // as many as the kernel follows
    const auto names = path.relative_path();
    Resolution way{"/", {names.begin(), names.end()}};
    for (int links = 0; !way.rest.empty() && links <= maxLinks;) {
        const auto name = way.rest.front();
        const bool isFolder = name.empty() || name == "." || name == "..";  // a trailing slash makes an empty name
        if (isFolder || DirectoryHandle::open(way.opened / name, onWay)) {
            way.opened = name == ".." ? way.opened.parent_path() : isFolder ? way.opened : way.opened / name;
            way.rest.pop_front();
            continue;
        }
        const auto holder = DirectoryHandle::open(way.opened, onWay);
        const auto target = holder ? linkAt(*holder, name.c_str()) : std::nullopt;
        if (!target) {
            break;
        }
        ++links;
        const auto more = target->relative_path();
        way.opened = target->is_absolute() ? "/" : way.opened;
        way.rest.pop_front();
        way.rest.insert(way.rest.begin(), more.begin(), more.end());
    }
    return way;
}

}  // namespace

std::optional<std::filesystem::path> withoutSystemLinks(const std::filesystem::path& path) {
    const auto way = resolve(path, systemLinkAt, {});
    return way.rest.empty() ? std::optional(way.opened) : std::nullopt;
}

std::filesystem::path withoutVisibleLinks(const std::filesystem::path& path, const Requester& requester) {
    const auto way = resolve(
        path, targetOf, [&](const auto& folder, const auto& status) { return requester.maySearch(folder, status); });
    return way.rest.empty() ? way.opened : way.opened / way.rest.front();
}

}  // namespace brimvault::cleaner
