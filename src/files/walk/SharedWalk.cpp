#include "files/walk/SharedWalk.h"

#include <memory>

namespace brimvault::files {

namespace {

// For a helper, who may find more to do elsewhere.
constexpr std::chrono::milliseconds aMoment(2);

}  // namespace

// A worker that cannot go on leaves its share undone; who asked for the walk is told in the end.
template <typename Part>
bool SharedWalk::work(Part part) noexcept {
    bool toItsEnd = false;
    std::exception_ptr trouble;
    try {
        toItsEnd = part();
    } catch (...) {
        trouble = std::current_exception();
    }
    const std::lock_guard lock(mutex_);
    trouble_ = trouble_ ? trouble_ : trouble;
    if (--working_ == 0 && shares_.empty()) {
        changed_.notify_all();
    }
    return toItsEnd;
}

bool SharedWalk::visit(const DirectoryHandle& parent, const char* name) {
    parent_ = &parent;
    working_ = 1;
    TreeWalk walk(visitor_, parent, stop_, this);
    bool toItsEnd = work([&] { return walk.visit(name); });
    if (isOffered_) {
        while (auto share = awaitShare(std::nullopt)) {
            toItsEnd = work([&] { return walk.visitShare(std::move(*share)); }) && toItsEnd;
        }
        WorkPool::shared().withdraw(*this);
    }
    if (trouble_) {
        std::rethrow_exception(trouble_);
    }
    return toItsEnd && !stop_.stop_requested();
}

bool SharedWalk::help() noexcept {
    auto share = awaitShare(aMoment);
    if (!share) {
        return false;
    }
    Fellows* const fellows = this;
    std::unique_ptr<TreeVisitor> visitor;
    std::optional<TreeWalk> walk;
    for (; share; share = awaitShare(aMoment)) {
        (void)work([&] {
            if (!walk) {
                visitor = visitor_.another();
                walk.emplace(*visitor, *parent_, stop_, fellows);
            }
            return walk->visitShare(std::move(*share));
        });
    }
    return true;
}

std::optional<FolderReference> SharedWalk::awaitShare(std::optional<std::chrono::milliseconds> longest) {
    std::unique_lock lock(mutex_);
    const auto isDecided = [this] { return !shares_.empty() || working_ == 0; };
    ++waiting_;
    updateWish();
    if (longest) {
        changed_.wait_for(lock, *longest, isDecided);
    } else {
        changed_.wait(lock, isDecided);
    }
    --waiting_;
    if (shares_.empty()) {
        updateWish();
        return std::nullopt;
    }
    std::optional<FolderReference> share(std::move(shares_.front()));
    shares_.pop_front();
    ++working_;
    updateWish();
    return share;
}

void SharedWalk::give(FolderReference share) {
    const std::lock_guard lock(mutex_);
    shares_.push_back(std::move(share));
    updateWish();
    changed_.notify_one();
}

// Helpers' walks grow large as well, but they are helpers because it is known.
void SharedWalk::onLargeTree() {
    if (!isOffered_) {
        isOffered_ = true;
        WorkPool::shared().offer(*this);
    }
}

}  // namespace brimvault::files
