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
/// have finished. Cancelling is a request: `main` polls a stop token. An operation that is cancelled before it began
/// finishes without running `main`. Any thread may call the public functions; setters only before queueing.
///
/// Work that hangs in a system call cannot poll. Its operation can be given up: from then on it counts as finished, and
/// what its work still posts is dropped.
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
    /// Blocks until the operation has finished. It must be on a queue.
    void waitUntilFinished() const;
    /// The same with a timeout; false if it has not finished by then.
    [[nodiscard]] bool waitUntilFinished(std::chrono::steady_clock::time_point deadline) const;

protected:
    virtual void main() = 0;
    /// Called after `main` has thrown, on its thread, to post what was done until then.
    virtual void failed() {}
    /// Called on the thread that gives the operation up, while `main` still hangs on its own.
    virtual void givenUp() {}
    [[nodiscard]] std::stop_token stopToken() const { return stop_.get_token(); }

private:
    friend class OperationQueue;
    [[nodiscard]] bool isReady() const;
    void run();
    void finish();
    void giveUp();

    std::stop_source stop_;
    std::stop_source recall_;  ///< stops the delivery of what its work posts
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
