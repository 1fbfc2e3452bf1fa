#include "scanners/places/FoundPlaces.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "platform/LibraryURLs.h"
#include "platform/ProgramFolders.h"
#include "platform/System.h"
#include "scanners/places/PlacePattern.h"
#include "scanners/places/Profiles.h"

namespace brimvault::scanners {

namespace fs = std::filesystem;

/// A folder from which patterns are looked for, held open.
struct FoundPlaces::Base {
    files::DirectoryHandle handle;
    std::shared_ptr<const platform::RootPlace> place;
};

namespace {

using platform::holds;

// None for what is no base folder of the desktop.
std::optional<platform::BaseFolder> desktopFolder(PlaceBase base) {
    using platform::BaseFolder;
    switch (base) {
        case PlaceBase::cacheHome:
            return BaseFolder::cache;
        case PlaceBase::configHome:
            return BaseFolder::configuration;
        case PlaceBase::dataHome:
            return BaseFolder::data;
        case PlaceBase::stateHome:
            return BaseFolder::state;
        default:
            return std::nullopt;
    }
}

// None where the system has no such folder, or the user has not set the variable; and for bases that begin in what
// other rules match.
std::optional<fs::path> namedBase(PlaceBase base) {
    using platform::LibraryURLs;
    const auto variable = [](const char* name) -> std::optional<fs::path> {
        const fs::path named = platform::system().environmentVariable(name);
        return named.is_absolute() ? std::optional(named.lexically_normal()) : std::nullopt;
    };
    if (const auto folder = desktopFolder(base)) {
        return LibraryURLs::baseFolder(*folder);
    }
    const bool isDesktop = LibraryURLs::baseFolder(platform::BaseFolder::cache).has_value();
    switch (base) {
        case PlaceBase::home:
            return isDesktop ? std::optional(platform::homeFolder()) : std::nullopt;
        case PlaceBase::system:
            return isDesktop ? std::optional(platform::systemRoot()) : std::nullopt;
        case PlaceBase::goPath:
            return variable("GOPATH");
        case PlaceBase::goModCache:
            return variable("GOMODCACHE");
        default:
            return std::nullopt;
    }
}

// Whether the folder lies outside of the user's home folder or is it, or has to do with one for the user's own things,
// with the trash or with secrets.
bool isNoBase(const fs::path& folder) {
    std::vector<fs::path> own = platform::LibraryURLs::namedUserFolders();
    own.push_back(platform::LibraryURLs::namedDownloadsFolder());
    own.push_back(platform::LibraryURLs::namedDesktopTrashFolder());
    for (auto& program : platform::programFolders()) {
        if (program.isPrivate) {
            own.push_back(std::move(program.named));
        }
    }
    const auto concerns = [&](const fs::path& named) {
        std::error_code unresolved;
        const auto resolved = fs::canonical(named, unresolved);
        return !unresolved && (holds(folder, resolved) || holds(resolved, folder));
    };
    std::error_code unresolved;
    const auto home = fs::canonical(platform::homeFolder(), unresolved);
    return unresolved || folder == home || !holds(home, folder) || std::any_of(own.begin(), own.end(), concerns);
}

// A place that a variable names may be anything: neither what belongs to the system or the user's own folders nor,
// where it is the place itself and not a folder in it, those that sections list by themselves.
bool isRefused(PlaceBase base, const fs::path& named, const fs::path& resolved) {
    if (const auto folder = desktopFolder(base)) {
        return named != platform::LibraryURLs::defaultBaseFolder(*folder) && isNoBase(resolved);
    }
    if (base != PlaceBase::goModCache) {
        return false;
    }
    const auto roots = platform::locateSectionRoots();
    return platform::openSectionRoot(named).place->refusal != platform::RootRefusal::none ||
           std::any_of(roots.begin(), roots.end(), [&](const auto& root) { return root.resolved == resolved; });
}

// The folders of profiles themselves have names that say nothing.
fs::path nameOfProfile(const fs::path& path) {
    const auto name = path.filename();
    const bool isNameless = name == "Default" || fits(name.native(), "Profile #");
    return isNameless && path.has_parent_path() ? path.parent_path().filename() : name;
}

bool exists(const files::DirectoryHandle& folder, const fs::path& inner) {
    bool isThere = false;
    forEachFitting(folder, inner.native(), {}, [&](const PlaceMatch&) { isThere = true; });
    return isThere;
}

// The part of the path that the beginning of a pattern matched.
fs::path beginningOf(const fs::path& path, std::string_view pattern) {
    const auto names = std::count(pattern.begin(), pattern.end(), '/') + 1;
    fs::path beginning;
    auto name = path.begin();
    for (std::ptrdiff_t taken = 0; taken < names && name != path.end(); ++taken) {
        beginning /= *name++;
    }
    return beginning;
}

files::Result<files::DirectoryHandle> openMatch(const PlaceMatch& match) {
    return match.kind == files::NodeKind::directory ? match.parent.openChild(match.path.filename().c_str())
                                                    : files::Result<files::DirectoryHandle>::failed(ENOTDIR);
}

bool isFolderRow(const PlaceRule& rule) {
    return rule.shape == PlaceShape::children || rule.shape == PlaceShape::cache || rule.shape == PlaceShape::files;
}

std::optional<PlaceFolder> folderOf(const PlaceRule& rule, const files::DirectoryHandle& folder, const fs::path& path) {
    const auto status = folder.status();
    return status ? std::optional(PlaceFolder{&rule, path, status->place()}) : std::nullopt;
}

}  // namespace

FoundPlaces::FoundPlaces(std::span<const PlaceRule> rules, const std::stop_token& stop) : rules_(rules), stop_(stop) {
    ProfileFolders profiles;
    for (const auto& rule : rules_) {
        find(rule, profiles);
    }
    for (const auto& [path, finder] : profiles) {
        if (const auto* from = base(finder->base)) {
            addProfileFolder(*finder, *from, path);
        }
    }
    removeSpared();
    removeRepeated();
    removeEmptyRows();
}

const FoundPlaces::Base* FoundPlaces::base(PlaceBase wanted) {
    if (const auto known = bases_.find(wanted); known != bases_.end()) {
        return known->second.get();
    }
    auto& made = bases_[wanted];
    const auto named = namedBase(wanted);
    std::error_code unresolved;
    const auto resolved = named ? fs::canonical(*named, unresolved) : fs::path();
    if (!named || unresolved) {
        return nullptr;
    }
    if (isRefused(wanted, *named, resolved)) {
        return nullptr;
    }
    if (auto opened = files::DirectoryHandle::openForReading(resolved)) {
        platform::RootPlace place{*named, resolved, platform::RootRefusal::none, {}};
        made = std::make_shared<const Base>(
            Base{std::move(*opened), std::make_shared<const platform::RootPlace>(std::move(place))});
    }
    return made.get();
}

void FoundPlaces::find(const PlaceRule& rule, ProfileFolders& profiles) {
    const auto* from = base(rule.base);
    if (from == nullptr) {
        return;
    }
    for (const std::string_view pattern : rule.patterns) {
        if (pattern == ".") {
            if (*rule.holds == '\0' || exists(from->handle, rule.holds)) {
                addMatch(rule, *from, {}, {}, from->handle);
            }
            continue;
        }
        forEachFitting(from->handle, pattern, stop_, [&](const PlaceMatch& match) {
            if (rule.answer == PlaceAnswer::spared) {
                spared_.push_back(from->place->resolved / match.path);
                return;
            }
            const auto folder = openMatch(match);
            if (!folder || (*rule.holds != '\0' && !exists(*folder, rule.holds))) {
                return;
            }
            if (rule.shape == PlaceShape::profile) {
                noteProfileFolder(rule, match.path, *folder, profiles);
            } else {
                addMatch(rule, *from, pattern, match.path, *folder);
            }
        });
    }
}

void FoundPlaces::addMatch(const PlaceRule& rule, const Base& from, std::string_view pattern, const fs::path& path,
                           const files::DirectoryHandle& folder) {
    auto& row = rowFor(rule, from, pattern, path);
    const auto whole = path.empty() ? from.place->resolved : from.place->resolved / path;
    if (auto found = isFolderRow(rule) ? folderOf(rule, folder, whole) : std::nullopt) {
        row.folders.push_back(std::move(*found));
    }
}

// A profile may look like a folder of profiles itself; it belongs to the one that holds it.
void FoundPlaces::noteProfileFolder(const PlaceRule& finder, const fs::path& path, const files::DirectoryHandle& folder,
                                    ProfileFolders& profiles) {
    const auto known = profiles.find(path);
    const bool isNew = known == profiles.end() && !profiles.contains(path.parent_path()) && isProfileFolder(folder);
    if (isNew || (known != profiles.end() && finder.answer > known->second->answer)) {
        profiles[path] = &finder;
    }
}

void FoundPlaces::addProfileFolder(const PlaceRule& finder, const Base& from, const fs::path& path) {
    const auto whole = from.place->resolved / path;
    const auto opened = files::DirectoryHandle::openForReading(whole);
    if (!opened) {
        return;
    }
    for (const auto& profile : profilesIn(
             *opened, [this](auto name) { return isData(name); }, stop_)) {
        const auto at = profile.empty() ? whole : whole / profile;
        const auto folder = files::DirectoryHandle::openForReading(at);
        for (const auto& rule : rules_) {
            if (folder && rule.base == PlaceBase::profile && rule.answer != PlaceAnswer::spared) {
                addCaches(rule, *folder, at, [&]() -> PlaceRow& {
                    auto& row = rowFor(rule.answer > finder.answer ? rule : finder, from, {}, path);
                    row.profile = whole;
                    row.application = nameOfProfile(path);
                    row.package = *finder.row == '\0' ? "" : beginningOf(path, finder.row).filename().native();
                    row.running = finder.running;
                    return row;
                });
            }
        }
    }
}

void FoundPlaces::addCaches(const PlaceRule& rule, const files::DirectoryHandle& profile, const fs::path& at,
                            const std::function<PlaceRow&()>& row) {
    for (const std::string_view pattern : rule.patterns) {
        forEachFitting(profile, pattern, stop_, [&](const PlaceMatch& match) {
            const auto child = openMatch(match);
            if (auto found = child ? folderOf(rule, *child, at / match.path) : std::nullopt) {
                row().folders.push_back(std::move(*found));
            }
        });
    }
}

PlaceRow& FoundPlaces::rowFor(const PlaceRule& rule, const Base& from, std::string_view pattern, const fs::path& path) {
    const bool isJoined = *rule.row != '\0' && !pattern.empty();
    const auto joined = isJoined ? beginningOf(path, rule.row) : path;
    // Joined are matches of the same application that have the same answer, others by their rule.
    const std::tuple key(std::string_view(isJoined ? rule.row : rule.id), rule.answer, from.place->resolved / joined);
    const auto [known, isNew] = numbers_.emplace(key, rows_.size());
    if (isNew) {
        const bool isPackage = rule.running.flatpak || rule.running.snap;
        PlaceRow row{&rule, from.place->resolved, rule.answer, rule.note, rule.running, {}, {}, {}, {}, from.place};
        row.path = path.empty() ? row.path : row.path / path;
        row.package = isPackage ? joined.filename().native() : "";
        row.application = isPackage || rule.shape == PlaceShape::files ? joined.filename().native() : "";
        rows_.push_back(std::move(row));
    }
    return rows_[known->second];
}

void FoundPlaces::removeSpared() {
    const auto isSpared = [this](const fs::path& path) {
        return std::any_of(spared_.begin(), spared_.end(),
                           [&](const fs::path& spared) { return holds(spared, path) || holds(path, spared); });
    };
    for (auto& row : rows_) {
        std::erase_if(row.folders, [&](const PlaceFolder& folder) { return isSpared(folder.path); });
    }
    std::erase_if(rows_,
                  [&](const PlaceRow& row) { return row.rule->shape == PlaceShape::entry && isSpared(row.path); });
}

void FoundPlaces::removeRepeated() {
    std::map<fs::path, PlaceRow*> holders;  // by the folder
    const auto isWhole = [](const PlaceFolder& folder) { return folder.rule->shape != PlaceShape::files; };
    for (auto& row : rows_) {
        for (const auto& folder : row.folders) {
            auto& holder = holders[folder.path];
            holder = holder == nullptr || row.answer > holder->answer ? &row : holder;
        }
    }
    for (auto& row : rows_) {
        std::erase_if(row.folders,
                      [&](const PlaceFolder& folder) { return isWhole(folder) && holders[folder.path] != &row; });
    }
}

void FoundPlaces::removeEmptyRows() {
    std::erase_if(rows_,
                  [](const PlaceRow& row) { return row.rule->shape != PlaceShape::entry && row.folders.empty(); });
}

void FoundPlaces::leaveOut(const files::NodePlace& folder) {
    for (auto& row : rows_) {
        std::erase_if(row.folders, [&](const PlaceFolder& one) { return one.place.identity == folder.identity; });
    }
    removeEmptyRows();
}

bool FoundPlaces::isData(std::string_view name) const {
    return std::any_of(rules_.begin(), rules_.end(), [&](const PlaceRule& rule) {
        return rule.base == PlaceBase::profile && rule.answer == PlaceAnswer::spared &&
               std::any_of(rule.patterns.begin(), rule.patterns.end(),
                           [&](const char* pattern) { return fits(name, pattern); });
    });
}

bool FoundPlaces::isAnyIn(const fs::path& folder) const {
    return std::any_of(rows_.begin(), rows_.end(), [&](const PlaceRow& row) { return holds(folder, row.path); });
}

std::optional<PlaceRow> FoundPlaces::take(const fs::path& path) {
    std::optional<PlaceRow> strictest;
    for (const auto& row : rows_) {
        if (holds(path, row.path) && (!strictest || row.answer > strictest->answer)) {
            strictest = row;
        }
    }
    std::erase_if(rows_, [&](const PlaceRow& row) { return holds(path, row.path); });
    return strictest;
}

}  // namespace brimvault::scanners
