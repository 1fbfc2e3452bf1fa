#include "engine/CBaseOperation2.h"

#include <QCoreApplication>
#include <set>
#include <string>

#include "engine/ItemRemoval.h"
#include "engine/NotificationCenter.h"
#include "engine/Notifications.h"

namespace brimvault::engine {

namespace {

bool isToBeCleaned(const FFItem& item) { return item.ppbChecked() && item.ppbDeletable() && item.pfSize() != 0; }

// A name that is to be looked up inside a folder must be one name, and not that of the folder or the one above.
bool isOneName(const std::filesystem::path& name) {
    return !name.empty() && !name.has_parent_path() && name != "." && name != "..";
}

QString holdsSparedText() { return QCoreApplication::translate("Clean", "It holds something that is not selected"); }

// The paths of what the user has spared, in the order of their bytes.
std::set<std::string> sparedPaths(const ItemArray& items) {
    std::set<std::string> paths;
    for (const auto& item : items) {
        if (!item->ppbChecked() && item->hasPath()) {
            paths.insert(item->pfpath().lexically_normal().native());
        }
    }
    return paths;
}

bool holdsAnyOf(const std::filesystem::path& folder, const std::set<std::string>& paths) {
    const auto inside = folder.lexically_normal().native() + "/";
    const auto first = paths.lower_bound(inside);
    return first != paths.end() && first->starts_with(inside);
}

}  // namespace

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
        const bool hasPath = item->hasPath();
        if (hasPath && holdsAnyOf(item->pfpath(), spared)) {
            notRemoved.insert(item->ppdisplayName(), holdsSparedText());
        } else if (hasPath) {
            removeItem(item, item->pfpath(), removed, notRemoved);
        } else if (!folder) {
            removed.append(item);
        } else if (isOneName(item->pfname())) {
            removeItem(item, *folder / item->pfname(), removed, notRemoved);
        } else {
            notRemoved.insert(item->ppdisplayName(), ItemRemoval::withoutSystemText());
        }
    }
}

void CBaseOperation2::removeItem(const std::shared_ptr<FFItem>& item, const std::filesystem::path& path,
                                 ItemArray& removed, NotRemovedDictionary& notRemoved) {
    const auto removal = removeItemAt(path, remover_);
    if (removal.gone) {
        removed.append(item);
    } else {
        notRemoved.insert(item->ppdisplayName(), removal.reason);
    }
}

void CBaseOperation2::cleanAndPost(const std::optional<std::filesystem::path>& folder) {
    ItemArray removed;
    NotRemovedDictionary notRemoved;
    removeItems(pCArray(), folder, removed, notRemoved);
    const auto words = vocabulary(section());
    NotificationCenter::defaultCenter().post(words.cleanFinished,
                                             {{words.arrayKey, removed}, {words.notCleanedKey, notRemoved}});
}

}  // namespace brimvault::engine
