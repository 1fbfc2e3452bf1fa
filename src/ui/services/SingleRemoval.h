#pragma once

#include <QCoreApplication>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

#include "engine/removal/ItemRemoval.h"
#include "engine/removal/RemovalHistory.h"
#include "ui/services/BackgroundCalls.h"
#include "ui/services/WindowNotices.h"

namespace brimvault::ui {

/// The removal of one item at the user's request, with its question. Main thread; the item goes on a thread of its own.
class SingleRemoval {
    Q_DECLARE_TR_FUNCTIONS(SingleRemoval)

public:
    /// All of them must outlive this object.
    SingleRemoval(const WindowNotices& notices, engine::PrivilegedRemover& remover, engine::RemovalHistory& history)
        : notices_(notices), remover_(remover), history_(history) {}

    using Finished = std::function<void(bool success)>;

    /// Whether the user, being asked, wants the item to be removed for good; a number of other items that are listed
    /// may lie in it, and go with it.
    [[nodiscard]] bool askToConfirm(const std::filesystem::path& path, qsizetype itemsInIt) const;
    /// The same of an item: the question says what it stands for, its note, and the notes of the items that go with it.
    [[nodiscard]] bool askToConfirm(const engine::FFItem& item, const std::filesystem::path& path,
                                    const engine::ItemArray& goingWithIt) const;
    /// Removes the file at an absolute, normal path, and tells the user where that failed. Then posts
    /// "singleFileRemoveFinished" and calls `finished` with whether the file is gone.
    void remove(const std::filesystem::path& path, const std::shared_ptr<const engine::FoundIn>& foundIn,
                const Finished& finished);
    /// The same of an item at the path where it lies, or of all that it stands for.
    void removeItem(const std::shared_ptr<const engine::FFItem>& item, const std::filesystem::path& path,
                    const Finished& finished, std::optional<engine::Section> section = std::nullopt);

    /// Whether a removal has not returned yet, or hangs.
    [[nodiscard]] bool isUnderWay() const { return underWay_ > 0; }
    /// Blocks until all removals have returned, for a second at most.
    void waitUntilIdle() { calls_.waitUntilIdle(); }

private:
    using Removal = std::function<engine::ItemRemoval(engine::ItemRemover&)>;

    [[nodiscard]] bool ask(const QString& name, QStringList where, qsizetype itemsInIt,
                           const Alert::Warning& warning) const;
    /// The name is for people; the outcome is completed for the history.
    void begin(const QString& name, const Removal& removal, engine::ItemOutcome outcome, const Finished& finished);
    void finish(const QString& name, const engine::ItemRemoval& removal, const Finished& finished);

    const WindowNotices& notices_;
    engine::PrivilegedRemover& remover_;
    engine::RemovalHistory& history_;
    int underWay_ = 0;
    BackgroundCalls calls_{1};
};

}  // namespace brimvault::ui
