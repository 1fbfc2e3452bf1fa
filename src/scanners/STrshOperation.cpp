#include "scanners/STrshOperation.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <utility>

#include "files/NodeStatus.h"
#include "files/trees/MeasuredFolder.h"
#include "platform/LibraryURLs.h"
#include "platform/ListScript.h"
#include "platform/TrashFolders.h"

namespace brimvault::scanners {

namespace {

namespace fs = std::filesystem;

// 0, which means to be measured, for anything but a whole number of bytes.
quint64 sizeFrom(const std::string& text) {
    qint64 size = 0;
    const char* const end = text.data() + text.size();
    const auto [stopped, code] = std::from_chars(text.data(), end, size);
    return code == std::errc() && stopped == end && size > 0 ? static_cast<quint64>(size) : 0;
}

std::string folderOf(const std::string& path) { return path.substr(0, path.rfind('/')); }

bool isHidden(const fs::path& path) { return path.filename().native().starts_with('.'); }

}  // namespace

// What matters of a folder with items; reading it takes the file system.
struct STrshOperation::TrashFolder {
    TrashFolder(const fs::path& folder, platform::FinderPreferences& finder)
        : path(folder),
          // The file browser's setting is about the home folder's; a desktop's trash shows all.
          hidesHiddenItems(folder == platform::LibraryURLs::getTrashFolderURL() &&
                           !finder.isHiddenFilesVisibleInFinder()),
          holdsLeftovers(platform::TrashFolders::holdsLeftovers(folder)) {}

    [[nodiscard]] bool shows(const fs::path& item) const { return !hidesHiddenItems || !isHidden(item); }

    fs::path path;
    bool hidesHiddenItems;
    bool holdsLeftovers;
};

std::optional<fs::path> STrshOperation::getOperationRootFolderURL() const {
    const auto& found = root(platform::LibraryURLs::namedTrashFolder());
    return found.folder ? std::optional(found.place->resolved) : std::nullopt;
}

void STrshOperation::main() {
    initCollectionByFinder();
    collectTrashInfoByFinder(expect(nTopLevelItemsCount()));
    closeRoots();
    sendOperationCompleted();
}

void STrshOperation::initCollectionByFinder() {
    if (const auto answer = platform::runListScript(sources_.script, sources_.scriptLimit, stopToken())) {
        fixPathsWithSameFileNames(readPairs(*answer));
    }
    setTopLevelItemsCount(static_cast<qint64>(pathSizeDictionary_.size()));
    if (pathSizeDictionary_.empty()) {
        initTopLevelItemsCount();
    }
}

std::vector<fs::path> STrshOperation::readPairs(const std::vector<std::string>& answer) {
    std::vector<fs::path> paths;
    std::map<fs::path, bool> isTrashFolder;  // cache: the check reads the file system
    for (std::size_t at = 0; at + 1 < answer.size() && !isCancelled(); at += 2) {
        const fs::path path = answer[at];
        auto known = isTrashFolder.find(path.parent_path());
        if (known == isTrashFolder.end()) {
            known = isTrashFolder.emplace(path.parent_path(), mayListItemsOf(path.parent_path())).first;
        }
        if (known->second && path.has_filename() && path == path.lexically_normal()) {
            pathSizeDictionary_[path.native()] = sizeFrom(answer[at + 1]);
            paths.push_back(path);
        }
    }
    return paths;
}

std::shared_ptr<const platform::RootPlace> STrshOperation::rootOf(const fs::path& folder) const {
    const auto [known, isNew] = rootsOfFolders_.try_emplace(folder);
    if (isNew) {
        for (const auto& named :
             {platform::LibraryURLs::namedTrashFolder(), platform::LibraryURLs::namedDesktopTrashFolder()}) {
            const auto& place = root(named).place;
            if (folder == place->resolved || folder.parent_path() == place->resolved) {
                known->second = place;
            }
        }
    }
    return known->second;
}

bool STrshOperation::mayListItemsOf(const fs::path& folder) const {
    const auto place = rootOf(folder);
    return (place == nullptr || place->refusal == platform::RootRefusal::none) &&
           platform::TrashFolders::holdsItems(folder);
}

// The script may list items of the same name in several trash folders under one path, repeated. The others are looked
// for in every folder that its answer mentions.
void STrshOperation::fixPathsWithSameFileNames(const std::vector<fs::path>& paths) {
    if (pathSizeDictionary_.size() >= paths.size()) {
        return;
    }
    std::map<fs::path, int> occurrences;
    std::set<fs::path> folders;
    for (const auto& path : paths) {
        ++occurrences[path];
        folders.insert(path.parent_path());
    }
    for (const auto& [path, count] : occurrences) {
        if (count < 2) {
            continue;
        }
        for (const auto& folder : folders) {
            const auto other = folder / path.filename();
            if (!pathSizeDictionary_.contains(other.native()) && files::statusOf(other)) {
                pathSizeDictionary_[other.native()] = 0;
            }
        }
    }
}

void STrshOperation::collectTrashInfoByFinder(ScanBatches& batches) {
    if (pathSizeDictionary_.empty()) {
        collectTrashInfo(batches);
        return;
    }
    std::map<std::string, TrashFolder> folders;
    for (const auto& [path, size] : pathSizeDictionary_) {
        if (const auto folder = folderOf(path); !folders.contains(folder)) {
            folders.emplace(folder, TrashFolder(folder, sources_.finder));
        }
    }
    std::erase_if(pathSizeDictionary_, [&](const auto& entry) {
        const bool isShown = folders.at(folderOf(entry.first)).shows(entry.first);
        if (!isShown) {
            batches.step();  // it was counted
        }
        return !isShown;
    });
    for (const auto& [path, folder] : folders) {
        collectMeasured(folder, batches);
    }
    for (const auto& [path, size] : pathSizeDictionary_) {
        if (isCancelled()) {
            return;
        }
        collectFile(fileIn(folders.at(folderOf(path)), path, size), batches);
    }
}

// Pool threads measure those whose sizes are not known. What the folder lists is no longer in the dictionary then.
void STrshOperation::collectMeasured(const TrashFolder& folder, ScanBatches& batches) {
    const auto sizes = [&](const char* name) {
        const auto known = pathSizeDictionary_.find(folder.path.native() + '/' + name);
        const bool isAsked = known != pathSizeDictionary_.end() && known->second == 0;
        return isAsked ? files::Sizes::wanted : files::Sizes::unwanted;
    };
    const auto call = [&](const files::MeasurableEntry& entry) {
        if (entry.sizes == files::Sizes::unwanted) {
            return true;
        }
        batches.step();
        auto measured = entry.findings();
        if (isCancelled()) {
            return false;
        }
        auto found = fileIn(folder, folder.path / entry.name, measured.logical);
        found.kind = entry.kind;
        found.space = std::move(measured.space);
        pathSizeDictionary_.erase(found.path.native());
        addItem(std::move(found), batches);
        return true;
    };
    (void)files::forEachMeasurable(folder.path, files::HiddenEntries::include, stopToken(), sizes, call);
}

STrshOperation::FoundFile STrshOperation::fileIn(const TrashFolder& folder, const fs::path& path, quint64 size) {
    FoundFile found{.path = path, .name = path.filename(), .size = size, .root = rootOf(folder.path)};
    if (folder.holdsLeftovers) {
        found.note = engine::ItemNote::deleting;
        found.ticked = isAbandoned(path);
    } else if (auto record = records_.ofItem(path)) {
        found.size = found.size == 0 ? record->size : found.size;  // what has no size is neither listed nor removed
        found.details.emplace().trashed = std::move(record);
    }
    return found;
}

// Moving it there was its last change.
bool STrshOperation::isAbandoned(const fs::path& leftover) const {
    constexpr std::chrono::hours longEnough{24};
    const auto status = files::statusOf(leftover);
    return status && sources_.now() - std::max(status->changed, status->modified) > longEnough;
}

void STrshOperation::collectTrashInfo(ScanBatches& batches) const {
    const auto hidden =
        sources_.finder.isHiddenFilesVisibleInFinder() ? files::HiddenEntries::include : files::HiddenEntries::skip;
    withRoot(platform::LibraryURLs::namedTrashFolder(), [&](const OpenFolder& folder) {
        const bool isShared = platform::TrashFolders::isSharedByUsers(folder.path);
        collectFilesIn(folder, hidden, Addressed::byName, batches,
                       [&](const fs::path& name) { return isShared && platform::TrashFolders::isUsers(name); });
    });
}

}  // namespace brimvault::scanners
