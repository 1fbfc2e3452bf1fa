#pragma once

#include <QCoreApplication>
#include <filesystem>
#include <functional>
#include <memory>

#include "engine/removal/ItemRemoval.h"
#include "ui/services/BackgroundCalls.h"
#include "ui/services/WindowNotices.h"

namespace brimvault::ui {

/// The removal of one item at the user's request, with its question. Main thread; the item goes on a thread of its own.
class SingleRemoval {
    Q_DECLARE_TR_FUNCTIONS(SingleRemoval)

public:
    /// Both must outlive this object.
    SingleRemoval(const WindowNotices& notices, engine::PrivilegedRemover& remover)
        : notices_(notices), remover_(remover) {}

    /// Whether the user, being asked, wants the item to be removed for good; a number of other items that are listed
    /// may lie in it, and go with it.
    [[nodiscard]] bool askToConfirm(const std::filesystem::path& path, qsizetype itemsInIt) const;
    /// Removes the file at an absolute, normal path, and tells the user where that failed. Then posts
    /// "singleFileRemoveFinished" and calls `finished` with whether the file is gone.
    void remove(const std::filesystem::path& path, const std::shared_ptr<const engine::FoundIn>& foundIn,
                const std::function<void(bool success)>& finished);

    /// Whether a removal has not returned yet, or hangs.
    [[nodiscard]] bool isUnderWay() const { return underWay_ > 0; }
    /// Blocks until all removals have returned, for a second at most.
    void waitUntilIdle() { calls_.waitUntilIdle(); }

private:
    void finish(const std::filesystem::path& path, const engine::ItemRemoval& removal,
                const std::function<void(bool success)>& finished);

    const WindowNotices& notices_;
    engine::PrivilegedRemover& remover_;
    int underWay_ = 0;
    BackgroundCalls calls_{1};
};

}  // namespace brimvault::ui
