#include "files/walk/SharedWalk.h"

#include <memory>

namespace brimvault::files {

// A worker that throws abandons its share; the walk then reports failure to its caller.
template <typename Part>
bool SharedWalk::work(Part part) noexcept {
    bool toItsEnd = false;
    std::exception_ptr exception;
    try {
        toItsEnd = part();
    } catch (...) {
        exception = std::current_exception();
    }
    const std::lock_guard lock(mutex_);
    firstException_ = firstException_ ? firstException_ : exception;
    if (--working_ == 0 && shares_.empty()) {
        changed_.notify_one();
    }
    return toItsEnd;
}

bool SharedWalk::visit(const DirectoryHandle& parent, const char* name) {
    parent_ = &parent;
    working_ = 1;
    TreeWalk walk(visitor_, parent, stop_, this);
    bool toItsEnd = work([&] { return walk.visit(name); });
    if (pool_ != nullptr) {
        while (auto share = awaitShare()) {
            toItsEnd = work([&] { return walk.visitShare(std::move(*share)); }) && toItsEnd;
        }
        pool_->withdraw(*this);
    }
    if (firstException_) {
        std::rethrow_exception(firstException_);
    }
    return toItsEnd && !stop_.stop_requested();
}

void SharedWalk::help() noexcept {
    WorkSharing* const sharing = this;
    std::unique_ptr<TreeVisitor> visitor;
    std::optional<TreeWalk> walk;
    while (auto share = takeShare()) {
        (void)work([&] {
            if (!walk) {
                visitor = visitor_.another();
                walk.emplace(*visitor, *parent_, stop_, sharing);
            }
            return walk->visitShare(std::move(*share));
        });
    }
}

std::optional<FolderReference> SharedWalk::takeShare() {
    const std::lock_guard lock(mutex_);
    return takeFirst();
}

std::optional<FolderReference> SharedWalk::awaitShare() {
    std::unique_lock lock(mutex_);
    isOwnerWaiting_.store(true, std::memory_order_relaxed);
    changed_.wait(lock, [this] { return !shares_.empty() || working_ == 0; });
    isOwnerWaiting_.store(false, std::memory_order_relaxed);
    return takeFirst();
}

// Called with the lock held.
std::optional<FolderReference> SharedWalk::takeFirst() {
    if (shares_.empty()) {
        return std::nullopt;
    }
    std::optional<FolderReference> share(std::move(shares_.front()));
    shares_.pop_front();
    pending_.store(shares_.size(), std::memory_order_relaxed);
    ++working_;
    return share;
}

// One that nobody has taken yet is enough: each holds a descriptor open.
bool SharedWalk::isShareWanted() const {
    return pool_ != nullptr && !hasWork() &&
           (isOwnerWaiting_.load(std::memory_order_relaxed) || pool_->hasIdleThread());
}

void SharedWalk::give(FolderReference share) {
    {
        const std::lock_guard lock(mutex_);
        shares_.push_back(std::move(share));
        pending_.store(shares_.size(), std::memory_order_relaxed);
        if (shares_.size() == 1 && isOwnerWaiting_.load(std::memory_order_relaxed)) {
            changed_.notify_one();
            return;
        }
    }
    pool_->wakeHelper(*this);
}

// Helpers' walks grow large as well, but by then the walk is offered.
void SharedWalk::onLargeTree() {
    if (pool_ == nullptr) {
        pool_ = &WorkPool::shared();
        pool_->offer(*this);
    }
}

}  // namespace brimvault::files
