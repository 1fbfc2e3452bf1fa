#pragma once

#include <QObject>
#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

#include "engine/removal/ItemTrash.h"
#include "ui/services/BackgroundCalls.h"
#include "ui/services/WindowNotices.h"

namespace brimvault::ui {

/// Moves single items to the Trash at the user's request, and back, until it is told to forget them. Each move posts
/// "singleFileRemoveFinished" at its end. Main thread; what is moved moves on a thread of its own.
class TrashMoves final : public QObject {
    Q_OBJECT

public:
    /// The notices must outlive this object.
    explicit TrashMoves(const WindowNotices& notices) : notices_(notices) {}

    using Item = std::shared_ptr<engine::FFItem>;
    using Finished = std::function<void(bool success)>;

    /// Moves the item at an absolute, normal path, and tells the user where that failed.
    void move(const Item& item, const std::filesystem::path& path, const Finished& finished);
    /// Puts the item back that was moved last, and tells the user where that failed: then the next calls take those
    /// that were moved before, and it again after them, unless it is not in the Trash any more. `finished` is called
    /// with an item of which anything is back, once.
    void undo(const std::function<void(const Item& item)>& finished);
    [[nodiscard]] bool isUndoable() const { return !moved_.empty(); }
    /// Of what was moved and is not back.
    [[nodiscard]] quint64 bytes() const { return bytes_; }
    /// For people: of the item that is put back next; empty if none can be put back.
    [[nodiscard]] QString lastName() const { return moved_.empty() ? QString() : moved_.back().item->ppdisplayName(); }
    /// From now on nothing that was moved can be put back.
    void forget();

    /// Whether a move has not returned yet, or hangs.
    [[nodiscard]] bool isUnderWay() const { return underWay_ > 0; }
    /// Blocks until all moves have returned, for a second at most.
    void waitUntilIdle() { calls_.waitUntilIdle(); }

Q_SIGNALS:
    /// The number of bytes or what can be put back has changed.
    void changed();

private:
    struct Moved {
        Item item;
        std::vector<engine::TrashedFile> files;
        bool isListed;  ///< since a part of it is in its place
    };
    void finishMove(const Item& item, const engine::TrashMove& move, const Finished& finished);
    void finishUndo(const Moved& moved, const engine::TrashReturn& result,
                    const std::function<void(const Item&)>& finished);

    const WindowNotices& notices_;
    std::vector<Moved> moved_;  ///< the next to be put back last
    quint64 bytes_ = 0;
    int underWay_ = 0;
    BackgroundCalls calls_{1};
};

}  // namespace brimvault::ui
