#include "engine/Operation.h"

#include <algorithm>
#include <exception>

namespace brimvault::engine {

bool Operation::isFinished() const {
    const std::lock_guard guard(mutex_);
    return finished_;
}

void Operation::waitUntilFinished() const {
    std::unique_lock lock(mutex_);
    finishedChanged_.wait(lock, [this] { return finished_; });
}

bool Operation::isReady() const {
    return std::all_of(dependencies_.begin(), dependencies_.end(),
                       [](const auto& dependency) { return dependency->isFinished(); });
}

void Operation::run() {
    if (isCancelled()) {
        return;
    }
    // Nobody above could do anything about an exception, and what waits for the operation must go on.
    try {
        main();
    } catch (const std::exception&) {
    }
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
