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
    Results results;
    for (const auto& application : pCArray_) {
        if (isCancelled()) {
            break;
        }
        if (application->ppbChecked() && application->ppbDeletable()) {
            clean(*application, needed, results);
        }
    }
    const auto words = engine::vocabulary(section());
    engine::NotificationCenter::defaultCenter().post(
        words.cleanFinished,
        {{engine::key::cleanedApplications, results.cleaned}, {words.notCleanedKey, results.notCleaned}});
}

void CAOperation::clean(const engine::AppItemData& application, const QStringList& needed, Results& results) {
    engine::LocalizationArray gone;
    QSet<QString> failed;
    for (const auto& item : application.itemsToClean(needed)) {
        if (isCancelled()) {
            break;  // what was done by now is told
        }
        if (isGoneAfterRemoval(item->plocPath)) {
            gone.append(item);
        } else {
            failed.insert(item->plocNameId);
        }
    }
    if (!gone.isEmpty()) {
        results.cleaned[application.pAppName()] = gone;
    }
    if (!failed.isEmpty()) {
        results.notCleaned[application.ppdisplayName()] += static_cast<int>(failed.size());  // two may share a name
    }
}

bool CAOperation::isGoneAfterRemoval(const std::filesystem::path& localization) {
    if (!files::mayExist(localization)) {
        return true;
    }
    return isFolder(localization) && isAnotherLocalizationBeside(localization) &&
           engine::removeItemAt(localization, remover_).gone;
}

}  // namespace brimvault::langres
