#include "langres/removal/CAOperation.h"

#include <QSet>

#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"
#include "engine/removal/ItemRemoval.h"
#include "files/NodeStatus.h"
#include "langres/LocalizationFolders.h"

namespace brimvault::langres {

void CAOperation::main() {
    const QStringList needed = pclprops_->mpstrArrayNeededLangs();
    if (needed.isEmpty()) {
        return;
    }
    {
        const std::lock_guard guard(resultsMutex_);
        results_.emplace();
    }
    for (const auto& application : pCArray_) {
        if (isCancelled()) {
            break;
        }
        if (application->ppbChecked() && application->ppbDeletable() && isAgreed(*application)) {
            clean(*application, needed);
        }
    }
    postResults();
}

void CAOperation::postResults() {
    const auto words = engine::vocabulary(section());
    engine::UserInfo results;
    {
        const std::lock_guard guard(resultsMutex_);
        if (!results_) {
            return;
        }
        results = {{engine::key::cleanedApplications, results_->cleaned}, {words.notCleanedKey, results_->notCleaned}};
    }
    engine::NotificationCenter::defaultCenter().post(words.cleanFinished, results);
}

// Records each removal at once, since the next may hang and the operation be given up.
void CAOperation::clean(const engine::AppItemData& application, const QStringList& needed) {
    QSet<QString> failed;
    for (const auto& item : application.itemsToClean(needed)) {
        if (isCancelled()) {
            break;  // what was done until now is posted
        }
        const bool gone = isGoneAfterRemoval(*item);
        const std::lock_guard guard(resultsMutex_);
        if (gone) {
            results_->cleaned[application.pAppName()].append(item);
        } else if (!failed.contains(item->plocNameId)) {
            failed.insert(item->plocNameId);
            ++results_->notCleaned[application.ppdisplayName()];  // applications may share a name
        }
    }
}

bool CAOperation::isGoneAfterRemoval(const engine::LocalizationItem& localization) {
    const auto& path = localization.plocPath;
    const bool mayGo = !files::mayExist(path) || (isFolder(path) && isAnotherLocalizationBeside(path));
    const auto removal = mayGo ? remover_.remove(path, localization.foundIn) : engine::ItemRemoval();
    report({section(),
            {path},
            engine::expectedToFree(localization),
            engine::deviceOf(localization.foundIn),
            removal.gone,
            removal.reason});
    return removal.gone;
}

}  // namespace brimvault::langres
