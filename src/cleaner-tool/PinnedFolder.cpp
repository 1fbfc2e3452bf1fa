#include "cleaner-tool/PinnedFolder.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <iterator>

namespace brimvault::cleaner {

namespace {

constexpr uid_t administrator = 0;

bool isAdministratorsAlone(const files::NodeStatus& node) {
    constexpr std::uint32_t writtenByOthers = 022;
    const bool isWritten = node.kind != files::NodeKind::link && (node.permissions & writtenByOthers) != 0;
    return node.owner == administrator && !isWritten;
}

// What a link of the administrator's leads to, as it stands there; none for anything else.
std::optional<std::filesystem::path> systemLinkAt(const std::filesystem::path& folder, const char* name) {
    const auto holder = files::DirectoryHandle::open(folder);
    const auto holderStatus = holder ? holder->status() : files::Result<files::NodeStatus>::failed(holder.code());
    if (!holderStatus || !isAdministratorsAlone(*holderStatus)) {
        return std::nullopt;
    }
    const auto status = files::statusAt(holder->descriptor(), name);
    std::array<char, PATH_MAX> target{};
    const ssize_t length = ::readlinkat(holder->descriptor(), name, target.data(), target.size());
    const bool isWhole = length > 0 && length < static_cast<ssize_t>(target.size());
    return status && isAdministratorsAlone(*status) && isWhole
               ? std::optional<std::filesystem::path>(std::string(target.data(), static_cast<std::size_t>(length)))
               : std::nullopt;
}

struct Way {
    std::filesystem::path passed;
    std::filesystem::path rest;  ///< from the first name on that is a link or missing
};

Way openAsFarAsPossible(const std::filesystem::path& path) {
    Way way{"/", {}};
    for (const auto& name : path.relative_path()) {
        const bool isPassed = way.rest.empty() && files::DirectoryHandle::open(way.passed / name);
        if (!name.empty()) {  // as one is that a slash at the end stands for
            (isPassed ? way.passed : way.rest) /= name;
        }
    }
    return way;
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
    constexpr int maxLinks = 40;  // as many as the system itself follows
    auto way = path;
    for (int links = 0; links <= maxLinks; ++links) {
        const auto [passed, rest] = openAsFarAsPossible(way);
        if (rest.empty()) {
            return passed;
        }
        const auto target = systemLinkAt(passed, rest.begin()->c_str());
        if (!target) {
            return std::nullopt;
        }
        way = (passed / *target).lexically_normal();
        std::for_each(std::next(rest.begin()), rest.end(), [&](const auto& name) { way /= name; });
    }
    return std::nullopt;
}

}  // namespace brimvault::cleaner
