#include "engine/CBaseOperation2.h"

#include <QCoreApplication>

#include "engine/ItemRemoval.h"
#include "engine/NotificationCenter.h"
#include "engine/Notifications.h"

namespace brimvault::engine {

namespace {

// A name that is to be looked up inside a folder must be one name, and not that of the folder or the one above.
bool isOneName(const std::filesystem::path& name) {
    return !name.empty() && !name.has_parent_path() && name != "." && name != "..";
}

QString holdsSparedText() { return QCoreApplication::translate("Clean", "It holds something that is not selected"); }

bool holdsAnyOf(const std::filesystem::path& folder, const std::set<std::string>& paths) {
    const auto inside = folder.lexically_normal().native() + "/";
    const auto first = paths.lower_bound(inside);
    return first != paths.end() && first->starts_with(inside);
}

}  // namespace

bool CBaseOperation2::isToBeCleaned(const FFItem& item) const {
    return item.ppbChecked() && item.ppbDeletable() && item.pfSize() != 0 && isAgreed(item);
}

// The paths of what the user has spared, or was not asked about, in the order of their bytes.
std::set<std::string> CBaseOperation2::sparedPaths(const ItemArray& items) const {
    std::set<std::string> paths;
    for (const auto& item : items) {
        if (item->hasPath() && !(item->ppbChecked() && isAgreed(*item))) {
            paths.insert(item->pfpath().lexically_normal().native());
        }
    }
    return paths;
}

void CBaseOperation2::removeItems(const ItemArray& items, const std::optional<std::filesystem::path>& folder,
                                  ItemArray& removed, NotRemovedDictionary& notRemoved) {
    const auto spared = sparedPaths(items);
    for (const auto& item : items) {
        if (isCancelled()) {
            return;
        }
        if (!isToBeCleaned(*item)) {
            continue;
        }
        const auto report = [&](const QString& reason) {
            const std::lock_guard guard(resultsMutex_);
            notRemoved.insert(item->ppdisplayName(), reason);
        };
        const bool hasPath = item->hasPath();
        if (hasPath && holdsAnyOf(item->pfpath(), spared)) {
            report(holdsSparedText());
        } else if (hasPath) {
            removeItem(item, item->pfpath(), removed, notRemoved);
        } else if (!folder) {
            const std::lock_guard guard(resultsMutex_);
            removed.append(item);
        } else if (isOneName(item->pfname())) {
            removeItem(item, *folder / item->pfname(), removed, notRemoved);
        } else {
            report(ItemRemoval::withoutSystemText());
        }
    }
}

void CBaseOperation2::removeItem(const std::shared_ptr<FFItem>& item, const std::filesystem::path& path,
                                 ItemArray& removed, NotRemovedDictionary& notRemoved) {
    const auto removal = removeItemAt(path, remover_);
    const std::lock_guard guard(resultsMutex_);
    if (removal.gone) {
        removed.append(item);
    } else {
        notRemoved.insert(item->ppdisplayName(), removal.reason);
    }
}

void CBaseOperation2::cleanAndPost(const std::optional<std::filesystem::path>& folder) {
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
