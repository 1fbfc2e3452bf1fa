#include "engine/model/NestedItems.h"

#include <algorithm>
#include <iterator>

namespace brimvault::engine {

namespace {

std::string folderOf(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

// Calls for each path that a removal of the item acts on; for none without a path.
template <typename Call>
void forEachPath(const FFItem& item, Call call) {
    const auto callIfInFolder = [&](const std::string& path) {
        if (path.find('/') != std::string::npos) {
            call(path);
        }
    };
    if (!item.hasTargets()) {
        callIfInFolder(item.pathBytes());
        return;
    }
    for (const auto& path : item.removalPaths()) {
        callIfInFolder(path.native());
    }
}

// Calls for each ancestor of the folder and for the folder itself, each with a slash at its end.
template <typename Call>
void forEachPrefix(const std::string& folder, Call call) {
    for (auto slash = folder.find('/'); slash != std::string::npos; slash = folder.find('/', slash + 1)) {
        call(folder.substr(0, slash + 1));
    }
}

}  // namespace

void NestedItems::addNew() {
    const qsizetype firstNew = indexed_;
    std::map<std::string, qsizetype> toSearch;  // folder to the first item in it that may hold others
    while (indexed_ < items_.size()) {
        addRun(toSearch);
    }
    for (const auto& [folder, firstItem] : toSearch) {
        findHoldersIn(folders_.find(folder), firstItem);
    }
    if (holders_.empty()) {
        return;
    }
    for (const auto& [folder, firstItem] : toSearch) {
        const auto& runs = folders_.find(folder)->second;
        for (auto run = runs.rbegin(); run != runs.rend() && run->first >= firstNew; ++run) {
            if (isAnyUnticked(*run)) {
                forEachHolderOf(folder, [](FFItem& holder) { holder.setPpbChecked(false); });
            }
        }
    }
    for (const auto& [path, place] : holders_) {
        if (place >= firstNew) {
            untickIfItHoldsUnticked(path, *items_[place]);
        }
    }
    if (holdsTargets_) {
        untickHoldersOfUnticked();
    }
}

void NestedItems::addRun(std::map<std::string, qsizetype>& toSearch) {
    Run run{indexed_, indexed_ + 1};
    while (run.end < items_.size() && items_[run.end]->isBeside(*items_[run.first])) {
        ++run.end;
    }
    indexed_ = run.end;
    holdsTargets_ = holdsTargets_ || items_[run.first]->hasTargets();
    std::set<std::string> folders;
    forEachPath(*items_[run.first], [&](const std::string& path) { folders.insert(folderOf(path)); });
    for (const auto& folder : folders) {
        addRunIn(folder, run, toSearch);
    }
}

void NestedItems::addRunIn(const std::string& folder, const Run& run, std::map<std::string, qsizetype>& toSearch) {
    const auto [known, isNew] = folders_.try_emplace(folder);
    known->second.push_back(run);
    toSearch.try_emplace(folder, run.first);
    if (isNew) {  // earlier items may hold it
        forEachPrefix(folder, [&](const std::string& prefix) {
            if (prefix != folder && folders_.contains(prefix)) {
                toSearch[prefix] = 0;
            }
        });
    }
}

void NestedItems::clear() {
    folders_.clear();
    holders_.clear();
    holdsTargets_ = false;
    indexed_ = 0;
}

std::set<std::string> NestedItems::namesThatHoldFolders(Folders::const_iterator folder) const {
    std::set<std::string> names;
    const auto& path = folder->first;
    for (auto next = std::next(folder); next != folders_.end() && next->first.starts_with(path);) {
        const auto holder = next->first.substr(0, next->first.find('/', path.size()));
        names.insert(holder.substr(path.size()));
        next = folders_.lower_bound(holder + static_cast<char>('/' + 1));  // skips all paths below the holder
    }
    return names;
}

void NestedItems::findHoldersIn(Folders::const_iterator folder, qsizetype firstItem) {
    const auto names = namesThatHoldFolders(folder);
    if (names.empty()) {
        return;
    }
    for (const auto& run : folder->second) {
        for (qsizetype place = std::max(run.first, firstItem); place < run.end; ++place) {
            forEachPath(*items_[place], [&](const std::string& path) {
                if (path.starts_with(folder->first) && names.contains(path.substr(folder->first.size()))) {
                    holders_.insert_or_assign(path + '/', place);
                }
            });
        }
    }
}

void NestedItems::forEachInside(const FFItem& item, const Call& call) const {
    forEachPath(item, [&](const std::string& path) {
        if (holders_.contains(path + '/')) {
            forEachBelow(path + '/', call);
        }
    });
}

void NestedItems::forEachBelow(const std::string& path, const Call& call) const {
    for (auto next = folders_.lower_bound(path); next != folders_.end() && next->first.starts_with(path); ++next) {
        for (const auto& run : next->second) {
            std::for_each(items_.begin() + run.first, items_.begin() + run.end,
                          [&](const auto& inner) { call(*inner); });
        }
    }
}

void NestedItems::forEachHolder(const FFItem& item, const Call& call) const {
    forEachPath(item, [&](const std::string& path) { forEachHolderOf(folderOf(path), call); });
}

void NestedItems::forEachHolderOf(const std::string& path, const Call& call) const {
    if (holders_.empty()) {
        return;
    }
    forEachPrefix(path, [&](const std::string& prefix) {
        if (const auto holder = holders_.find(prefix); holder != holders_.end()) {
            call(*items_[holder->second]);
        }
    });
}

// What lies in a holder follows it in the map: only the outermost ones are looked into, and no item is met twice but
// one that has several targets.
quint64 NestedItems::freesRepeated() const {
    quint64 bytes = 0;
    std::string outermost;
    std::set<const FFItem*> met;
    for (const auto& [path, place] : holders_) {
        const bool isInside = !outermost.empty() && path.starts_with(outermost);
        if (isInside || !items_[place]->ppbChecked() || !items_[place]->ppbDeletable()) {
            continue;
        }
        outermost = path;
        forEachBelow(path, [&](const FFItem& inner) {
            bytes += inner.hasTargets() && !met.insert(&inner).second ? 0 : inner.freesBySel();
        });
    }
    return bytes;
}

std::vector<std::string> NestedItems::holders() const {
    std::vector<std::string> paths;
    std::transform(holders_.begin(), holders_.end(), std::back_inserter(paths),
                   [](const auto& holder) { return holder.first; });
    return paths;
}

bool NestedItems::isAnyUnticked(const Run& run) const {
    return std::any_of(items_.begin() + run.first, items_.begin() + run.end,
                       [](const auto& item) { return !item->ppbChecked(); });
}

bool NestedItems::untickIfItHoldsUnticked(const std::string& path, FFItem& holder) const {
    for (auto next = folders_.lower_bound(path);
         holder.ppbChecked() && next != folders_.end() && next->first.starts_with(path); ++next) {
        const auto& runs = next->second;
        if (std::any_of(runs.begin(), runs.end(), [this](const Run& run) { return isAnyUnticked(run); })) {
            holder.setPpbChecked(false);
            return true;
        }
    }
    return false;
}

// What holds an item with several targets need not hold what lies in another of these: that takes another round.
void NestedItems::untickHoldersOfUnticked() const {
    bool again = true;
    while (again) {
        again = false;
        for (const auto& [path, place] : holders_) {
            auto& holder = *items_[place];
            again = (untickIfItHoldsUnticked(path, holder) && holder.hasTargets()) || again;
        }
    }
}

}  // namespace brimvault::engine
