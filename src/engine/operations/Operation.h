#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <stop_token>
#include <utility>
#include <vector>

namespace brimvault::engine {

/// A piece of work for an OperationQueue: run once, on a thread of the queue, after the operations that it depends on
/// have finished. Cancelling is a request: it sets a flag that the work looks at; an operation cancelled before it
/// began finishes without its `main`. Any thread may call the public functions; what is set is set before queueing.
///
/// Work that hangs in the system does not look at the flag. Its operation can be given up: it counts as finished from
/// then on, and nobody hears what its work still posts.
class Operation {
public:
    Operation() = default;
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;
    virtual ~Operation() = default;

    /// The other operation is added to the same queue, before this one.
    void addDependency(const std::shared_ptr<Operation>& other) { dependencies_.push_back(other); }
    /// Called on a thread of the queue once the operation has finished, cancelled or not.
    void setCompletionBlock(std::function<void()> block) { completionBlock_ = std::move(block); }

    void cancel() { stop_.request_stop(); }
    [[nodiscard]] bool isCancelled() const { return stop_.stop_requested(); }
    [[nodiscard]] bool isFinished() const;
    /// Blocks the calling thread until the operation, queued before, has returned from its work.
    void waitUntilFinished() const;
    /// The same, for no longer than this; false when it has not finished by then.
    [[nodiscard]] bool waitUntilFinished(std::chrono::steady_clock::time_point deadline) const;

protected:
    virtual void main() = 0;
    /// In the place of what `main` left undone when it threw, on its thread: what was done by then can be told.
    virtual void failed() {}
    /// On the thread that gives the operation up, while its own hangs somewhere in `main`.
    virtual void givenUp() {}
    [[nodiscard]] std::stop_token stopToken() const { return stop_.get_token(); }

private:
    friend class OperationQueue;
    [[nodiscard]] bool isReady() const;
    void run();
    void finish();
    void giveUp();

    std::stop_source stop_;
    std::stop_source recall_;  ///< of what its work posts
    std::vector<std::shared_ptr<Operation>> dependencies_;
    std::function<void()> completionBlock_;

    mutable std::mutex mutex_;  ///< protects what follows
    mutable std::condition_variable finishedChanged_;
    bool finished_ = false;
};

/// Has no work of its own: finishes when everything that it depends on has, then calls the block, even if cancelled.
class CompletionOperation final : public Operation {
public:
    explicit CompletionOperation(std::function<void()> block) { setCompletionBlock(std::move(block)); }

protected:
    void main() override {}
};

}  // namespace brimvault::engine
