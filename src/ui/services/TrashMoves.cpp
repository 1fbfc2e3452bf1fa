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

quint64 bytesOf(const std::vector<engine::TrashedFile>& files) {
    quint64 bytes = 0;
    for (const auto& file : files) {
        bytes += file.bytes;
    }
    return bytes;
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
    const bool isMoved = move.reason.isEmpty();
    if (!move.files.empty()) {
        moved_.push_back({item, move.files, !isMoved});
        bytes_ += bytesOf(move.files);
        Q_EMIT changed();
    }
    if (!isMoved) {
        const QString text = move.files.empty() ? tr("“%1” could not be moved to the Trash")
                                                : tr("Only a part of “%1” could be moved to the Trash");
        notices_.show(text.arg(item->ppdisplayName()), move.reason);
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
    calls_.call<engine::TrashReturn>(
        [files = last.files] { return engine::putBack(files); },
        [this, last, finished](const engine::TrashReturn& result) { finishUndo(last, result, finished); });
}

// What cannot be put back for now does not keep what was moved before it in the Trash.
void TrashMoves::finishUndo(const Moved& moved, const engine::TrashReturn& result,
                            const std::function<void(const Item&)>& finished) {
    --underWay_;
    const bool isAnyBack = !result.back.empty();
    bytes_ -= bytesOf(moved.files) - bytesOf(result.left);  // what is lost is in the Trash no more
    if (!result.left.empty()) {
        moved_.insert(moved_.begin(), {moved.item, result.left, moved.isListed || isAnyBack});
    }
    if (!result.reason.isEmpty()) {
        const QString text = isAnyBack ? tr("Only a part of “%1” could be put back") : tr("“%1” could not be put back");
        notices_.show(text.arg(moved.item->ppdisplayName()), result.reason);
    }
    Q_EMIT changed();
    postEnd(result.reason.isEmpty());
    if (isAnyBack && !moved.isListed) {
        finished(moved.item);
    }
}

void TrashMoves::forget() {
    moved_.clear();
    bytes_ = 0;
    Q_EMIT changed();
}

}  // namespace brimvault::ui
