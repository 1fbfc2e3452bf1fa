#include "engine/OperationQueue.h"

#include <algorithm>

#include "files/BackgroundThread.h"

// An operation waits in `waiting_` until all that it depends on has finished and a place is free, runs in `running_`,
// and leaves the queue before it is marked finished, so that who waited for it does not find it on the queue. Only two
// events can make an operation startable: one is added, or one has finished; after each, `startReady` looks.

namespace brimvault::engine {

OperationQueue::OperationQueue(int maxConcurrentOperationCount)
    : maxConcurrentOperationCount_(maxConcurrentOperationCount) {
    pool_.setMaxThreadCount(maxConcurrentOperationCount);
}

OperationQueue::~OperationQueue() {
    cancelAllOperations();
    for (auto left = operations(); !left.empty(); left = operations()) {
        left.front()->waitUntilFinished();
    }
    pool_.waitForDone();
}

void OperationQueue::addOperation(const std::shared_ptr<Operation>& operation) {
    {
        const std::lock_guard guard(mutex_);
        waiting_.push_back(operation);
    }
    startReady();
}

std::vector<std::shared_ptr<Operation>> OperationQueue::operations() const {
    const std::lock_guard guard(mutex_);
    std::vector<std::shared_ptr<Operation>> all(running_.begin(), running_.end());
    all.insert(all.end(), waiting_.begin(), waiting_.end());
    return all;
}

void OperationQueue::cancelAllOperations() {
    for (const auto& operation : operations()) {
        operation->cancel();
    }
}

void OperationQueue::cancelAndWait(const std::function<bool(const Operation&)>& chosen) {
    auto snapshot = operations();
    std::erase_if(snapshot, [&](const auto& operation) { return !chosen(*operation); });
    for (const auto& operation : snapshot) {
        operation->cancel();
    }
    for (const auto& operation : snapshot) {
        operation->waitUntilFinished();
    }
}

void OperationQueue::startReady() {
    const std::lock_guard guard(mutex_);
    for (auto next = waiting_.begin(); next != waiting_.end();) {
        if (static_cast<int>(running_.size()) >= maxConcurrentOperationCount_) {
            return;
        }
        if (!(*next)->isReady()) {
            ++next;
            continue;
        }
        auto operation = *next;
        next = waiting_.erase(next);
        running_.push_back(operation);
        pool_.start([this, operation = std::move(operation)] { runToEnd(operation); });
    }
}

void OperationQueue::runToEnd(const std::shared_ptr<Operation>& operation) {
    files::standBack();
    operation->run();
    {
        const std::lock_guard guard(mutex_);
        running_.remove(operation);
    }
    operation->finish();
    startReady();
}

}  // namespace brimvault::engine
