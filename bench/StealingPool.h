#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <iterator>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace brimvault::bench {

/// A thread pool with work stealing. Each thread takes work from the end of a list of its own; while another thread is
/// idle, it gives the older half of its list away.
template <typename Work>
class StealingPool {
public:
    using List = std::vector<Work>;

    StealingPool(unsigned threads, List first) : threads_(threads), shared_(std::move(first)) {}

    /// `make` makes a worker for each thread: worker(work, list) does the work and appends new work to the list.
    /// Returns when nothing is left.
    template <typename Make>
    void run(Make make) {
        std::vector<std::jthread> others;
        for (unsigned thread = 1; thread < threads_; ++thread) {
            others.emplace_back([this, make] { runOne(make()); });
        }
        runOne(make());
    }

private:
    template <typename Worker>
    void runOne(Worker worker) {
        List own;
        while (!own.empty() || takeShared(own)) {
            Work work = std::move(own.back());
            own.pop_back();
            worker(std::move(work), own);
            if (own.size() > 1 && idle_.load(std::memory_order_relaxed) > 0) {
                giveHalf(own);
            }
        }
    }

    bool takeShared(List& own) {
        std::unique_lock lock(mutex_);
        ++idle_;
        if (idle_ == threads_ && shared_.empty()) {
            changed_.notify_all();
        }
        changed_.wait(lock, [this] { return !shared_.empty() || idle_ == threads_; });
        if (shared_.empty()) {
            return false;
        }
        --idle_;
        own.swap(shared_);
        return true;
    }

    void giveHalf(List& own) {
        const auto end = own.begin() + static_cast<std::ptrdiff_t>(own.size() / 2);
        {
            const std::lock_guard lock(mutex_);
            shared_.insert(shared_.end(), std::make_move_iterator(own.begin()), std::make_move_iterator(end));
        }
        own.erase(own.begin(), end);
        changed_.notify_one();
    }

    const unsigned threads_;
    std::mutex mutex_;
    std::condition_variable changed_;
    List shared_;
    std::atomic<unsigned> idle_ = 0;
};

}  // namespace brimvault::bench
