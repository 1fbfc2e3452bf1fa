#include "engine/CBaseOperation2.h"

#include <QCoreApplication>

#include "engine/NotificationCenter.h"
#include "engine/Notifications.h"
#include "engine/ProtectedFolders.h"
#include "files/NodeStatus.h"
#include "files/Remove.h"

namespace brimvault::engine {

namespace {

bool isToBeCleaned(const FFItem& item) { return item.ppbChecked() && item.ppbDeletable() && item.pfSize() != 0; }

// A name that is to be looked up inside a folder must be one name, and not that of the folder or the one above.
bool isOneName(const std::filesystem::path& name) {
    return !name.empty() && !name.has_parent_path() && name != "." && name != "..";
}

QString withoutSystemText() { return QCoreApplication::translate("Clean", "Can't remove file"); }

QString reason(const files::RemovalOutcome& outcome) {
    return outcome.failure ? QString::fromLocal8Bit(outcome.failure->text().c_str()) : withoutSystemText();
}

}  // namespace

void CBaseOperation2::removeItems(const ItemArray& items, const std::optional<std::filesystem::path>& folder,
                                  ItemArray& removed, NotRemovedDictionary& notRemoved) {
    for (const auto& item : items) {
        if (isCancelled()) {
            return;
        }
        if (!isToBeCleaned(*item)) {
            continue;
        }
        if (!item->pfpath().empty()) {
            removeItem(item, item->pfpath(), removed, notRemoved);
        } else if (!folder) {
            removed.append(item);
        } else if (isOneName(item->pfname())) {
            removeItem(item, *folder / item->pfname(), removed, notRemoved);
        } else {
            notRemoved.insert(item->ppdisplayName(), withoutSystemText());
        }
    }
}

void CBaseOperation2::removeItem(const std::shared_ptr<FFItem>& item, const std::filesystem::path& path,
                                 ItemArray& removed, NotRemovedDictionary& notRemoved) {
    if (!files::mayExist(path)) {
        removed.append(item);
        return;
    }
    if (isProtectedFolder(path)) {
        notRemoved.insert(item->ppdisplayName(), withoutSystemText());
        return;
    }
    const auto outcome = files::remove(path);  // without the stop: a cancel is seen between items
    if (outcome.end == files::RemovalEnd::gone) {
        removed.append(item);
    } else {
        notRemoved.insert(item->ppdisplayName(), reason(outcome));
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
