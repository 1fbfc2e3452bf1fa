#include "ui/services/SingleRemoval.h"

#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"
#include "platform/DisplayText.h"
#include "ui/services/PlaceTexts.h"

namespace brimvault::ui {

namespace {

QString inItText(qsizetype items) {
    return items == 1
               ? QCoreApplication::translate("SingleRemoval", "It holds 1 other item of the list, which goes with it.")
               : QCoreApplication::translate("SingleRemoval", "It holds %1 other items of the list, which go with it.")
                     .arg(items);
}

QString targetsText(qsizetype targets) {
    return targets == 1
               ? QCoreApplication::translate("SingleRemoval", "It stands for 1 file or folder:")
               : QCoreApplication::translate("SingleRemoval", "It stands for %1 files or folders:").arg(targets);
}

}  // namespace

// Always asked, even of users who have switched off the question of a clean: a key is pressed by mistake more easily
// than all the steps of a clean are taken.
bool SingleRemoval::askToConfirm(const std::filesystem::path& path, qsizetype itemsInIt,
                                 const engine::FFItem* item) const {
    const bool several = item != nullptr && item->hasTargets();
    QStringList where;
    if (several) {
        where.append(targetsText(static_cast<qsizetype>(item->removalPaths().size())));
        where.append(placeTexts::ofTargets(*item));
    } else {
        where.append(platform::displayText(path));
    }
    if (itemsInIt > 0) {
        where.append(inItText(itemsInIt));
    }
    where.append({QString(), tr("Files will be  permanently removed from your Hard Drive.")});
    Alert question{tr("Are you sure you want to completely delete “%1”?")
                       .arg(several ? item->ppdisplayName() : platform::displayText(path.filename())),
                   where.join(QLatin1Char('\n')), Alert::Suppression::notOffered, Alert::Buttons::deleteAndCancel};
    if (item != nullptr) {
        question.warning.sum = item->noteText();
    }
    return notices_.ask(question);
}

void SingleRemoval::remove(const std::filesystem::path& path, const std::shared_ptr<const engine::FoundIn>& foundIn,
                           const Finished& finished) {
    begin(
        platform::displayText(path.filename()),
        [path, foundIn](engine::ItemRemover& remover) { return remover.remove(path, foundIn); }, finished);
}

void SingleRemoval::removeTargets(const std::shared_ptr<const engine::FFItem>& item, const Finished& finished) {
    begin(
        item->ppdisplayName(), [item](engine::ItemRemover& remover) { return remover.removeTargets(*item); }, finished);
}

void SingleRemoval::begin(const QString& name, const Removal& removal, const Finished& finished) {
    remover_.allowAskingUser();
    ++underWay_;
    calls_.call<engine::ItemRemoval>(
        [&privileged = remover_, removal] {
            engine::ItemRemover remover(privileged);
            return removal(remover);
        },
        [this, name, finished](const engine::ItemRemoval& done) { finish(name, done, finished); });
}

void SingleRemoval::finish(const QString& name, const engine::ItemRemoval& removal, const Finished& finished) {
    --underWay_;
    if (!removal.gone) {
        notices_.show(tr("“%1” could not be removed").arg(name), removal.reason);
    }
    engine::NotificationCenter::defaultCenter().post(engine::notification::singleFileRemoveFinished,
                                                     {{engine::key::success, engine::Number{removal.gone ? 1 : 0}}});
    finished(removal.gone);
}

}  // namespace brimvault::ui
