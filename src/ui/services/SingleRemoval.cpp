#include "ui/services/SingleRemoval.h"

#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"
#include "platform/DisplayText.h"

namespace brimvault::ui {

// Always asked, even of users who have switched off the question of a clean: a key is pressed by mistake more easily
// than all the steps of a clean are taken.
bool SingleRemoval::askToConfirm(const std::filesystem::path& path, qsizetype itemsInIt) const {
    QString where = platform::displayText(path);
    if (itemsInIt > 0) {
        const QString count = itemsInIt == 1
                                  ? tr("It holds 1 other item of the list, which goes with it.")
                                  : tr("It holds %1 other items of the list, which go with it.").arg(itemsInIt);
        where += QStringLiteral("\n") + count;
    }
    return notices_.ask(
        {tr("Are you sure you want to completely delete “%1”?").arg(platform::displayText(path.filename())),
         where + QStringLiteral("\n\n") + tr("Files will be  permanently removed from your Hard Drive."),
         Alert::Suppression::notOffered, Alert::Buttons::deleteAndCancel});
}

void SingleRemoval::remove(const std::filesystem::path& path, const std::shared_ptr<const engine::FoundIn>& foundIn,
                           const std::function<void(bool success)>& finished) {
    remover_.allowAskingUser();
    ++underWay_;
    calls_.call<engine::ItemRemoval>(
        [&remover = remover_, path, foundIn] { return engine::ItemRemover(remover).remove(path, foundIn); },
        [this, path, finished](const engine::ItemRemoval& removal) { finish(path, removal, finished); });
}

void SingleRemoval::finish(const std::filesystem::path& path, const engine::ItemRemoval& removal,
                           const std::function<void(bool success)>& finished) {
    --underWay_;
    if (!removal.gone) {
        notices_.show(tr("“%1” could not be removed").arg(platform::displayText(path.filename())), removal.reason);
    }
    engine::NotificationCenter::defaultCenter().post(engine::notification::singleFileRemoveFinished,
                                                     {{engine::key::success, engine::Number{removal.gone ? 1 : 0}}});
    finished(removal.gone);
}

}  // namespace brimvault::ui
