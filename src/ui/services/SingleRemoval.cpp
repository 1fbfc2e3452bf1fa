#include "ui/services/SingleRemoval.h"

#include <algorithm>
#include <iterator>

#include "engine/model/PlaceTexts.h"
#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"
#include "platform/text/DisplayText.h"
#include "ui/services/NoteWarnings.h"

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

// The item's own warning, then those of what goes with it.
Alert::Warning warningAbout(const engine::FFItem& item, const engine::ItemArray& goingWithIt) {
    engine::ItemArray noted;
    std::copy_if(goingWithIt.begin(), goingWithIt.end(), std::back_inserter(noted),
                 [](const auto& other) { return isWarning(other->note()); });
    QStringList lines{isWarning(item.note()) ? item.noteText() : QString()};
    if (!noted.isEmpty()) {
        lines.append(QCoreApplication::translate("SingleRemoval", "About what goes with it:"));
        lines.append(noteLines(noted));
    }
    lines.removeAll(QString());
    return lines.isEmpty() ? Alert::Warning() : Alert::Warning{lines.takeFirst(), lines};
}

}  // namespace

bool SingleRemoval::askToConfirm(const std::filesystem::path& path, qsizetype itemsInIt) const {
    return ask(platform::displayText(path.filename()), {platform::displayText(path)}, itemsInIt, {});
}

bool SingleRemoval::askToConfirm(const engine::FFItem& item, const std::filesystem::path& path,
                                 const engine::ItemArray& goingWithIt) const {
    const auto warning = warningAbout(item, goingWithIt);
    QStringList where{platform::displayText(path)};
    if (item.hasTargets()) {
        where = engine::placeTexts::ofTargets(item);
        where.prepend(targetsText(static_cast<qsizetype>(item.removalPaths().size())));
    }
    if (item.note() == engine::ItemNote::emptied) {
        where.append(item.noteText());
    }
    return ask(item.hasTargets() ? item.ppdisplayName() : platform::displayText(path.filename()), where,
               goingWithIt.size(), warning);
}

// Always asked, even of users who have switched off the question of a clean: a key is pressed by mistake more easily
// than all the steps of a clean are taken.
bool SingleRemoval::ask(const QString& name, QStringList where, qsizetype itemsInIt,
                        const Alert::Warning& warning) const {
    if (itemsInIt > 0) {
        where.append(inItText(itemsInIt));
    }
    where.append({QString(), tr("Files will be  permanently removed from your Hard Drive.")});
    return notices_.ask({tr("Are you sure you want to completely delete “%1”?").arg(name),
                         where.join(QLatin1Char('\n')),
                         Alert::Suppression::notOffered,
                         Alert::Buttons::deleteAndCancel,
                         {},
                         warning});
}

void SingleRemoval::remove(const std::filesystem::path& path, const std::shared_ptr<const engine::FoundIn>& foundIn,
                           const Finished& finished) {
    begin(
        platform::displayText(path.filename()),
        [path, foundIn](engine::ItemRemover& remover) { return remover.remove(path, foundIn); }, {.paths = {path}},
        finished);
}

void SingleRemoval::removeItem(const std::shared_ptr<const engine::FFItem>& item, const std::filesystem::path& path,
                               const Finished& finished, std::optional<engine::Section> section) {
    const bool isSeveral = item->hasTargets();
    begin(
        isSeveral ? item->ppdisplayName() : platform::displayText(path.filename()),
        [item, path, isSeveral](engine::ItemRemover& remover) {
            return isSeveral ? remover.removeTargets(*item) : remover.removeItem(*item, path);
        },
        {.section = section,
         .paths = isSeveral ? item->removalPaths() : std::vector{path},
         .bytes = engine::expectedToFree(*item)},
        finished);
}

void SingleRemoval::begin(const QString& name, const Removal& removal, engine::ItemOutcome outcome,
                          const Finished& finished) {
    remover_.allowAskingUser();
    ++underWay_;
    calls_.call<engine::ItemRemoval>(
        [&privileged = remover_, &history = history_, removal, outcome = std::move(outcome)]() mutable {
            engine::ItemRemover remover(privileged);
            auto done = removal(remover);
            outcome.gone = done.gone;
            outcome.reason = done.reason;
            outcome.emptied = done.emptied;
            history.add(outcome);
            return done;
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
