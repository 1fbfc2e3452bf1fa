#include "platform/SectionRoots.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <system_error>
#include <utility>

#include "platform/LibraryURLs.h"
#include "platform/ProgramFolders.h"
#include "platform/System.h"

namespace brimvault::platform {

namespace {

namespace fs = std::filesystem;

/// A folder that a root folder must not be, nor hold. Two roots of one section may be the same folder: it is listed
/// once.
struct Obstacle {
    enum class Kind { home, privateFolder, userFolder, caches, downloads, logs, containers, trash, applications };
    Kind kind;
    fs::path named;
};

// Does not access the disk: each may be on a volume that does not answer.
std::vector<Obstacle> sectionRoots() {
    using Kind = Obstacle::Kind;
    const auto home = homeFolder();
    const auto library = home / "Library";
    std::vector<Obstacle> roots = {{Kind::downloads, LibraryURLs::namedDownloadsFolder()},
                                   {Kind::logs, library / "Logs"},
                                   {Kind::logs, library / "Application Support" / "CrashReporter"},
                                   {Kind::logs, systemRoot() / "Library" / "Logs"},
                                   {Kind::containers, library / "Containers"},
                                   {Kind::trash, LibraryURLs::namedTrashFolder()},
                                   {Kind::trash, LibraryURLs::namedDesktopTrashFolder()},
                                   {Kind::applications, systemRoot() / "Applications"},
                                   {Kind::applications, home / "Applications"}};
    for (auto& folder : LibraryURLs::namedCachesFolders()) {
        roots.push_back({Kind::caches, std::move(folder)});
    }
    return roots;
}

std::vector<Obstacle> obstacles() {
    std::vector<Obstacle> all = {{Obstacle::Kind::home, homeFolder()}};
    for (auto& folder : LibraryURLs::namedUserFolders()) {
        all.push_back({Obstacle::Kind::userFolder, std::move(folder)});
    }
    auto roots = sectionRoots();
    std::move(roots.begin(), roots.end(), std::back_inserter(all));
    for (auto& folder : programFolders()) {
        const auto kind = folder.isPrivate ? Obstacle::Kind::privateFolder : Obstacle::Kind::userFolder;
        all.push_back({kind, std::move(folder.named)});
    }
    return all;
}

std::vector<FolderLocation> locateAll(const std::vector<Obstacle>& obstacles) {
    std::vector<fs::path> named;
    std::transform(obstacles.begin(), obstacles.end(), std::back_inserter(named),
                   [](const Obstacle& obstacle) { return obstacle.named; });
    return locate(named);
}

RootRefusal refusalFor(Obstacle::Kind kind) {
    return kind == Obstacle::Kind::home         ? RootRefusal::homeFolder
           : kind <= Obstacle::Kind::userFolder ? RootRefusal::userFolder
                                                : RootRefusal::otherRootFolder;
}

// Compares device and inode, and paths as well: of a folder on a volume that does not answer only the path is known.
void judge(RootPlace& place, const files::FileIdentity& folder) {
    const auto all = obstacles();
    const auto locations = locateAll(all);
    const auto own = std::find_if(all.begin(), all.end(), [&](const Obstacle& obstacle) {
        return obstacle.kind > Obstacle::Kind::userFolder && obstacle.named == place.named;
    });
    for (std::size_t number = 0; number < all.size(); ++number) {
        const auto& obstacle = all[number];
        const auto& location = locations[number];
        if (obstacle.kind == Obstacle::Kind::privateFolder && holds(location.resolved, place.resolved)) {
            place.refusal = RootRefusal::userFolder;
            place.obstacle = place.resolved;
            return;
        }
        const bool isIt =
            (!location.folders.empty() && location.folders.back() == folder) || location.resolved == place.resolved;
        const bool isOrHolds =
            std::find(location.folders.begin(), location.folders.end(), folder) != location.folders.end() ||
            holds(place.resolved, location.resolved);
        const bool isOfOneSection = own != all.end() && obstacle.kind == own->kind;
        // A trash folder lists only the contents of its "files", so it may hold another trash root.
        const bool mayBe = isOfOneSection && (isIt || obstacle.kind == Obstacle::Kind::trash);
        if (isOrHolds && !mayBe) {
            place.refusal = refusalFor(obstacle.kind);
            place.obstacle = location.resolved;
            return;
        }
    }
}

RootRefusal refusalFor(int code) {
    switch (code) {
        case ENOENT:
            return RootRefusal::missing;
        case ENOTDIR:
        case ELOOP:
            return RootRefusal::noFolder;
        default:
            return RootRefusal::closed;
    }
}

// What stands at the path of a folder that could not be resolved.
RootRefusal refusalForUnresolved(const fs::path& named, const std::error_code& code) {
    const auto status = files::statusOf(named);
    if (status && status->kind == files::NodeKind::link) {
        return code.value() == EACCES ? RootRefusal::closed : RootRefusal::leadsNowhere;
    }
    return refusalFor(code.value());
}

}  // namespace

SectionRoot openSectionRoot(const fs::path& named) {
    RootPlace place{named, named.lexically_normal(), RootRefusal::none, {}};
    std::optional<files::DirectoryHandle> folder;
    std::error_code unresolved;
    if (auto resolved = fs::canonical(named, unresolved); !unresolved) {
        place.resolved = std::move(resolved);
        auto opened = files::DirectoryHandle::openForReading(place.resolved);
        const auto status = opened ? opened->status() : files::Result<files::NodeStatus>::failed(opened.code());
        if (status) {
            judge(place, status->identity);
            folder = std::move(*opened);
        } else {
            place.refusal = refusalFor(status.code());
        }
    } else {
        place.refusal = refusalForUnresolved(named, unresolved);
    }
    if (place.refusal != RootRefusal::none) {
        folder.reset();
    }
    return {std::make_shared<const RootPlace>(std::move(place)), std::move(folder)};
}

bool leadsWhereItDid(const RootPlace& place) {
    std::error_code unresolved;
    const auto resolved = fs::canonical(place.named, unresolved);
    if (unresolved) {
        // True only if the folder itself is gone: if just a symbolic link to it is, it is still where the link led.
        return unresolved.value() == ENOENT && !files::mayExist(place.named) && !files::mayExist(place.resolved);
    }
    return resolved == place.resolved;
}

std::vector<FolderLocation> locateSectionRoots() { return locateAll(sectionRoots()); }

}  // namespace brimvault::platform
