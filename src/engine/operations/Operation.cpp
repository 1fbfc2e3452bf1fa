#include "engine/operations/Operation.h"

#include <algorithm>

#include "engine/notification/NotificationCenter.h"

namespace brimvault::engine {

bool Operation::isFinished() const {
    const std::lock_guard guard(mutex_);
    return finished_;
}

void Operation::waitUntilFinished() const {
    std::unique_lock lock(mutex_);
    finishedChanged_.wait(lock, [this] { return finished_; });
}

bool Operation::waitUntilFinished(std::chrono::steady_clock::time_point deadline) const {
    std::unique_lock lock(mutex_);
    return finishedChanged_.wait_until(lock, deadline, [this] { return finished_; });
}

bool Operation::isReady() const {
    return std::all_of(dependencies_.begin(), dependencies_.end(),
                       [](const auto& dependency) { return dependency->isFinished(); });
}

void Operation::run() {
    if (isCancelled()) {
        return;
    }
    const NotificationCenter::Recallable posts(recall_.get_token());
    // Exceptions end here: no caller could handle them, and what waits for the operation must go on.
    try {
        try {
            main();
        } catch (...) {
            failed();
        }
    } catch (...) {
    }
}

void Operation::giveUp() {
    cancel();
    givenUp();
    recall_.request_stop();
}

void Operation::finish() {
    {
        const std::lock_guard guard(mutex_);
        finished_ = true;
    }
    finishedChanged_.notify_all();
    if (completionBlock_) {
        completionBlock_();
    }
}

}  // namespace brimvault::engine
