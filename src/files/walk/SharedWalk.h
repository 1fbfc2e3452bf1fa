#pragma once

#include <atomic>
#include <chrono>
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

/// One tree, visited by the calling thread and, once it has turned out to be large, by whoever of the pool has time.
/// Used once, by one thread.
class SharedWalk final : public SharedWork, private Fellows {
public:
    /// The visitor is told by the calling thread, visitors that it makes (`another`) by the others.
    SharedWalk(TreeVisitor& visitor, std::stop_token stop) : visitor_(visitor), stop_(std::move(stop)) {}

    /// The folder is a name in an open folder. Returns when nobody is at work any more: false when the walk was stopped
    /// before its end. Throws what kept one of the workers from going on: where memory ran out, std::bad_alloc.
    [[nodiscard]] bool visit(const DirectoryHandle& parent, const char* name);

    bool help() noexcept override;
    [[nodiscard]] const std::stop_token& stopToken() const override { return stop_; }

private:
    [[nodiscard]] bool wantShare() const override { return isShareWanted_.load(std::memory_order_relaxed); }
    void give(FolderReference share) override;
    void onLargeTree() override;

    template <typename Part>
    bool work(Part part) noexcept;
    /// The next share, which counts as worked on from then; none once all is done, or when it takes too long.
    std::optional<FolderReference> awaitShare(std::optional<std::chrono::milliseconds> longest);
    void updateWish() { isShareWanted_.store(waiting_ > shares_.size(), std::memory_order_relaxed); }

    TreeVisitor& visitor_;
    const std::stop_token stop_;
    const DirectoryHandle* parent_ = nullptr;  ///< set before others are called
    bool isOffered_ = false;                   ///< set by the calling thread, before others are called
    std::atomic<bool> isShareWanted_ = false;

    std::mutex mutex_;  ///< protects what follows
    std::condition_variable changed_;
    std::deque<FolderReference> shares_;
    std::size_t waiting_ = 0;     ///< threads that wait for a share
    int working_ = 0;             ///< threads that could still give one
    std::exception_ptr trouble_;  ///< the first; of a worker that could not go on
};

}  // namespace brimvault::files
