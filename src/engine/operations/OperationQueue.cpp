#include "engine/operations/OperationQueue.h"

#include <algorithm>
#include <condition_variable>
#include <list>
#include <mutex>
#include <system_error>
#include <thread>

#include "files/walk/ThreadPriority.h"

// An operation waits in `waiting_` until its dependencies have finished and the limit allows, then runs in `running_`.
// It leaves the queue before it is marked finished, so that a thread that waited for it does not find it on the queue.
// Only two events can make an operation startable: one is added, or one has finished. `startReady` runs after each.
//
// An operation may return and be given up at the same time. Whichever thread removes it from `running_` wins the race
// and marks it finished. A thread whose operation was given up ends silently and nobody joins it; so threads are
// detached, and share the ownership of `Work` with the queue.

namespace brimvault::engine {

namespace {

using Operations = std::vector<std::shared_ptr<Operation>>;

}  // namespace

class OperationQueue::Work : public std::enable_shared_from_this<Work> {
public:
    explicit Work(int maxConcurrentOperationCount) : maxConcurrentOperationCount_(maxConcurrentOperationCount) {}

    void add(const std::shared_ptr<Operation>& operation);
    [[nodiscard]] Operations operations() const;
    [[nodiscard]] Operations leftBehind() const;
    Operations giveUp(const Chosen& chosen);
    void waitUntilIdle();

private:
    void startReady();
    [[nodiscard]] Operations takeReady();
    void start(const std::shared_ptr<Operation>& operation);
    void runToEnd(std::shared_ptr<Operation> operation);

    const int maxConcurrentOperationCount_;
    mutable std::mutex mutex_;  ///< protects what follows
    std::condition_variable idleChanged_;
    std::list<std::shared_ptr<Operation>> waiting_;
    std::list<std::shared_ptr<Operation>> running_;
    std::list<std::shared_ptr<Operation>> leftBehind_;
    int threads_ = 0;  ///< threads that will still access this object
};

OperationQueue::OperationQueue(int maxConcurrentOperationCount)
    : work_(std::make_shared<Work>(maxConcurrentOperationCount)) {}

OperationQueue::~OperationQueue() {
    cancelAllOperations();
    work_->waitUntilIdle();
}

void OperationQueue::addOperation(const std::shared_ptr<Operation>& operation) { work_->add(operation); }

std::vector<std::shared_ptr<Operation>> OperationQueue::operations() const { return work_->operations(); }

std::vector<std::shared_ptr<Operation>> OperationQueue::leftBehind() const { return work_->leftBehind(); }

std::vector<std::shared_ptr<Operation>> OperationQueue::giveUp(const Chosen& chosen) { return work_->giveUp(chosen); }

void OperationQueue::cancelAllOperations() {
    for (const auto& operation : operations()) {
        operation->cancel();
    }
}

void OperationQueue::cancelAndWait(const Chosen& chosen) {
    auto snapshot = operations();
    std::erase_if(snapshot, [&](const auto& operation) { return !chosen(*operation); });
    for (const auto& operation : snapshot) {
        operation->cancel();
    }
    const auto deadline = std::chrono::steady_clock::now() + returnTimeout;
    std::erase_if(snapshot, [&](const auto& operation) { return operation->waitUntilFinished(deadline); });
    giveUp([&](const Operation& operation) {
        return std::any_of(snapshot.begin(), snapshot.end(),
                           [&](const auto& late) { return late.get() == &operation; });
    });
}

// --- What the threads share with the queue ----------------------------------------------------------------------

void OperationQueue::Work::add(const std::shared_ptr<Operation>& operation) {
    {
        const std::lock_guard guard(mutex_);
        waiting_.push_back(operation);
    }
    startReady();
}

Operations OperationQueue::Work::operations() const {
    const std::lock_guard guard(mutex_);
    Operations all(running_.begin(), running_.end());
    all.insert(all.end(), waiting_.begin(), waiting_.end());
    return all;
}

Operations OperationQueue::Work::leftBehind() const {
    const std::lock_guard guard(mutex_);
    return {leftBehind_.begin(), leftBehind_.end()};
}

Operations OperationQueue::Work::giveUp(const Chosen& chosen) {
    Operations given;
    {
        const std::lock_guard guard(mutex_);
        for (auto next = running_.begin(); next != running_.end();) {
            const auto operation = next++;
            if (chosen(**operation)) {
                given.push_back(*operation);
                leftBehind_.splice(leftBehind_.end(), running_, operation);
                --threads_;
            }
        }
    }
    for (const auto& operation : given) {
        operation->giveUp();
        operation->finish();
    }
    startReady();
    idleChanged_.notify_all();
    return given;
}

void OperationQueue::Work::waitUntilIdle() {
    std::unique_lock lock(mutex_);
    idleChanged_.wait(lock, [this] { return waiting_.empty() && running_.empty() && threads_ == 0; });
}

void OperationQueue::Work::startReady() {
    for (const auto& operation : takeReady()) {
        start(operation);
    }
}

Operations OperationQueue::Work::takeReady() {
    Operations ready;
    const std::lock_guard guard(mutex_);
    for (auto next = waiting_.begin(); next != waiting_.end();) {
        if (static_cast<int>(running_.size()) >= maxConcurrentOperationCount_) {
            break;
        }
        const auto operation = next++;
        if ((*operation)->isReady()) {
            ready.push_back(*operation);
            running_.splice(running_.end(), waiting_, operation);
            ++threads_;
        }
    }
    return ready;
}

// If the system can start no thread, the operation finishes without its work.
void OperationQueue::Work::start(const std::shared_ptr<Operation>& operation) {
    try {
        std::thread([self = shared_from_this(), operation = operation]() mutable {
            files::lowerThreadPriority();
            self->runToEnd(std::move(operation));
        }).detach();
    } catch (const std::system_error&) {
        operation->cancel();
        runToEnd(operation);
    }
}

void OperationQueue::Work::runToEnd(std::shared_ptr<Operation> operation) {
    operation->run();
    {
        const std::lock_guard guard(mutex_);
        if (leftBehind_.remove(operation) > 0) {
            return;
        }
        running_.remove(operation);
    }
    operation->finish();
    operation.reset();
    startReady();
    const std::lock_guard guard(mutex_);
    --threads_;
    idleChanged_.notify_all();
}

}  // namespace brimvault::engine
