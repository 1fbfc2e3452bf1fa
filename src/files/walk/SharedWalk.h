#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <mutex>
#include <optional>
#include <stop_token>

#include "files/walk/TreeWalk.h"
#include "files/walk/WorkPool.h"

namespace brimvault::files {

/// One tree, visited by the calling thread (its owner) and, once it proves large, by idle threads of the pool as well.
/// For a single call of `visit`.
class SharedWalk final : public SharedWork, private WorkSharing {
public:
    /// The visitor is called on the owner's thread; each helper has one of its own, made by `another`.
    SharedWalk(TreeVisitor& visitor, std::stop_token stop) : visitor_(visitor), stop_(std::move(stop)) {}

    /// Visits the folder of that name in the open one. Returns when no thread works on it any more: false when the walk
    /// was stopped before its end. Rethrows the first exception that made a worker abandon its share, such as
    /// std::bad_alloc.
    [[nodiscard]] bool visit(const DirectoryHandle& parent, const char* name);

    [[nodiscard]] bool hasWork() const noexcept override { return pending_.load(std::memory_order_relaxed) > 0; }
    void help() noexcept override;
    [[nodiscard]] const std::stop_token& stopToken() const override { return stop_; }

private:
    [[nodiscard]] bool isShareWanted() const override;
    void give(FolderReference share) override;
    void onLargeTree() override;

    template <typename Part>
    bool work(Part part) noexcept;
    /// Takes the next share and counts its worker in `working_`; none if none is queued now.
    std::optional<FolderReference> takeShare();
    /// Waits for a share; none once the whole tree has been visited. Called by the owner alone.
    std::optional<FolderReference> awaitShare();
    std::optional<FolderReference> takeFirst();

    TreeVisitor& visitor_;
    const std::stop_token stop_;
    const DirectoryHandle* parent_ = nullptr;   ///< set before helpers come
    WorkPool* pool_ = nullptr;                  ///< to which the walk is offered; set by the owner, before helpers come
    std::atomic<std::size_t> pending_ = 0;      ///< shares_.size(), for readers without the lock
    std::atomic<bool> isOwnerWaiting_ = false;  ///< written with the lock held

    std::mutex mutex_;  ///< protects what follows
    std::condition_variable changed_;
    std::deque<FolderReference> shares_;
    int working_ = 0;                    ///< threads that could still give a share
    std::exception_ptr firstException_;  ///< the first exception of a worker
};

}  // namespace brimvault::files
