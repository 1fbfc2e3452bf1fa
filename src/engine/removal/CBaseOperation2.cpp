#include "engine/removal/CBaseOperation2.h"

#include <QCoreApplication>

#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"

namespace brimvault::engine {

namespace {

QString holdsSparedText() { return QCoreApplication::translate("Clean", "It holds something that is not selected"); }

bool holdsAnyOf(const std::filesystem::path& folder, const std::set<std::string>& paths) {
    const auto inside = folder.lexically_normal().native() + "/";
    const auto first = paths.lower_bound(inside);
    return first != paths.end() && first->starts_with(inside);
}

// Another item may stand for the same thing as a target.
QString reasonToSpare(const std::filesystem::path& target, const std::set<std::string>& spared) {
    const bool isSpared = spared.contains(target.lexically_normal().native()) || holdsAnyOf(target, spared);
    return isSpared ? holdsSparedText() : QString();
}

}  // namespace

bool CBaseOperation2::isToBeCleaned(const FFItem& item) const {
    return item.getSpace2SaveBySel() != 0 && isAgreed(item);
}

// What removing the items would remove that may not go, are unticked, or that the user was not asked about; sorted.
std::set<std::string> CBaseOperation2::sparedPaths(const ItemArray& items) const {
    std::set<std::string> paths;
    for (const auto& item : items) {
        if (!(item->ppbChecked() && item->ppbDeletable() && isAgreed(*item))) {
            for (const auto& path : item->removalPaths()) {
                paths.insert(path.lexically_normal().native());
            }
        }
    }
    return paths;
}

void CBaseOperation2::removeItems(const ItemArray& items, const std::optional<std::filesystem::path>& folder,
                                  ItemArray& removed, NotRemovedDictionary& notRemoved) {
    const auto spared = sparedPaths(items);
    ItemRemover remover(remover_);
    for (const auto& item : items) {
        if (isCancelled()) {
            return;
        }
        if (!isToBeCleaned(*item)) {
            continue;
        }
        if (item->hasTargets()) {
            take(remover.removeTargets(*item, [&](const auto& path) { return reasonToSpare(path, spared); }), item,
                 item->removalPaths(), removed, notRemoved);
            continue;
        }
        const auto location = item->location();
        if (item->hasPath() && holdsAnyOf(location, spared)) {
            take({false, holdsSparedText()}, item, {location}, removed, notRemoved);
        } else if (item->hasPath()) {
            take(remover.removeItem(*item, location), item, {location}, removed, notRemoved);
        } else if (location.empty() && !folder && !isRootRefused_) {
            take({true, {}}, item, {item->pfname()}, removed, notRemoved);
        } else if ((location.empty() && !folder) || !isOneName(item->pfname())) {
            take({false, ItemRemoval::withoutSystemText()}, item, {item->pfname()}, removed, notRemoved);
        } else {
            const auto path = location.empty() ? *folder / item->pfname() : location;
            take(remover.removeItem(*item, path), item, {path}, removed, notRemoved);
        }
    }
    afterRemoving(remover);
}

void CBaseOperation2::take(const ItemRemoval& removal, const std::shared_ptr<FFItem>& item,
                           std::vector<std::filesystem::path> paths, ItemArray& removed,
                           NotRemovedDictionary& notRemoved) {
    report({section(), std::move(paths), expectedToFree(*item), deviceOf(*item), removal.gone, removal.reason,
            removal.emptied});
    const std::lock_guard guard(resultsMutex_);
    if (removal.gone) {
        removed.append(item);
    } else {
        notRemoved.insert(item->ppdisplayName(), removal.reason);
    }
}

void CBaseOperation2::cleanAndPost(const std::optional<std::filesystem::path>& root) {
    std::optional<std::filesystem::path> folder;
    if (root) {
        const auto place = platform::openSectionRoot(*root).place;
        isRootRefused_ =
            place->refusal != platform::RootRefusal::none && place->refusal != platform::RootRefusal::missing;
        folder = isRootRefused_ ? folder : place->resolved;
    }
    removeItems(pCArray(), folder, removed_, notRemoved_);
    postResults();
}

void CBaseOperation2::postResults() {
    const auto words = vocabulary(section());
    UserInfo results;
    {
        const std::lock_guard guard(resultsMutex_);
        results = {{words.arrayKey, removed_}, {words.notCleanedKey, notRemoved_}};
    }
    NotificationCenter::defaultCenter().post(words.cleanFinished, results);
}

}  // namespace brimvault::engine
