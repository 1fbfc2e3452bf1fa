#include "langres/CAOperation.h"

#include <QSet>

#include "engine/ItemRemoval.h"
#include "engine/NotificationCenter.h"
#include "engine/Notifications.h"
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

// What is gone is noted at once, since the next removal may hang.
void CAOperation::clean(const engine::AppItemData& application, const QStringList& needed) {
    QSet<QString> failed;
    const bool isThere = application.foundIn() == nullptr || engine::isStillThere(*application.foundIn());
    for (const auto& item : application.itemsToClean(needed)) {
        if (isCancelled()) {
            break;  // what was done by now is told
        }
        const bool gone = isThere && isGoneAfterRemoval(item->plocPath);
        const std::lock_guard guard(resultsMutex_);
        if (gone) {
            results_->cleaned[application.pAppName()].append(item);
        } else if (!failed.contains(item->plocNameId)) {
            failed.insert(item->plocNameId);
            ++results_->notCleaned[application.ppdisplayName()];  // two may share a name
        }
    }
}

bool CAOperation::isGoneAfterRemoval(const std::filesystem::path& localization) {
    if (!files::mayExist(localization)) {
        return true;
    }
    return isFolder(localization) && isAnotherLocalizationBeside(localization) &&
           remover_.remove(localization, nullptr).gone;
}

}  // namespace brimvault::langres
