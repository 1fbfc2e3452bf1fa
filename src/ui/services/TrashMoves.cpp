#include "ui/services/TrashMoves.h"

#include <utility>

#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"

namespace brimvault::ui {

namespace {

void postEnd(bool success) {
    engine::NotificationCenter::defaultCenter().post(engine::notification::singleFileRemoveFinished,
                                                     {{engine::key::success, engine::Number{success ? 1 : 0}}});
}

}  // namespace

void TrashMoves::move(const Item& item, const std::filesystem::path& path, const Finished& finished) {
    ++underWay_;
    calls_.call<engine::TrashMove>(
        [item, path] { return engine::moveToTrash(*item, path); },
        [this, item, finished](const engine::TrashMove& move) { finishMove(item, move, finished); });
}

void TrashMoves::finishMove(const Item& item, const engine::TrashMove& move, const Finished& finished) {
    --underWay_;
    const bool isMoved = !move.files.empty();
    if (isMoved) {
        moved_.push_back({item, move.files});
        bytes_ += item->pfSize();
        Q_EMIT changed();
    } else {
        notices_.show(tr("“%1” could not be moved to the Trash").arg(item->ppdisplayName()), move.reason);
    }
    postEnd(isMoved);
    finished(isMoved);
}

void TrashMoves::undo(const std::function<void(const Item& item)>& finished) {
    if (moved_.empty()) {
        return;
    }
    ++underWay_;
    const auto last = std::move(moved_.back());
    moved_.pop_back();
    calls_.call<QString>([files = last.files] { return engine::putBack(files); },
                         [this, last, finished](const QString& reason) { finishUndo(last, reason, finished); });
}

void TrashMoves::finishUndo(const Moved& moved, const QString& reason,
                            const std::function<void(const Item&)>& finished) {
    --underWay_;
    const bool isBack = reason.isEmpty();
    if (isBack) {
        bytes_ -= moved.item->pfSize();
    } else {
        notices_.show(tr("“%1” could not be put back").arg(moved.item->ppdisplayName()), reason);
    }
    Q_EMIT changed();
    postEnd(isBack);
    if (isBack) {
        finished(moved.item);
    }
}

void TrashMoves::forget() {
    moved_.clear();
    bytes_ = 0;
    Q_EMIT changed();
}

}  // namespace brimvault::ui
