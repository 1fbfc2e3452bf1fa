#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

#include "engine/operations/Operation.h"

namespace brimvault::engine {

/// Runs operations on threads of its own, in the order in which they were added, each as soon as its dependencies have
/// finished and the limit on concurrency allows. An operation is on the queue until it has finished. Any thread may
/// call; the destructor cancels everything and waits. The threads run at a lower priority than the main thread.
///
/// An operation that hangs can be given up: it leaves the queue, which no longer waits for it nor counts it. Its thread
/// stays until the work returns, perhaps after the queue has been destroyed.
class OperationQueue {
public:
    /// Room for every section, a cancelled earlier scan of each, and the completions.
    static constexpr int defaultConcurrency = 16;
    /// The timeout for a cancelled operation. Scans poll their stop token many times a second: one that takes longer
    /// hangs. A clean finishes its current item first: before giving one up, see whether it makes progress
    /// (files::entriesRemoved).
    static constexpr std::chrono::milliseconds returnTimeout{1000};

    using Chosen = std::function<bool(const Operation&)>;

    explicit OperationQueue(int maxConcurrentOperationCount = defaultConcurrency);
    OperationQueue(const OperationQueue&) = delete;
    OperationQueue& operator=(const OperationQueue&) = delete;
    ~OperationQueue();

    void addOperation(const std::shared_ptr<Operation>& operation);
    /// A snapshot: those that run, then those that wait, each in the order in which they were added.
    [[nodiscard]] std::vector<std::shared_ptr<Operation>> operations() const;
    /// Cancels everything on the queue and returns at once.
    void cancelAllOperations();
    /// Cancels the chosen operations on the queue and blocks until they have finished, at most `returnTimeout`: what
    /// still runs then is given up, and what still waits will finish without its work.
    void cancelAndWait(const Chosen& chosen);
    /// Cancels and gives up the chosen ones of those that run. Returns them, without waiting.
    std::vector<std::shared_ptr<Operation>> giveUp(const Chosen& chosen);
    /// A snapshot of those that were given up and still hang.
    [[nodiscard]] std::vector<std::shared_ptr<Operation>> leftBehind() const;

private:
    class Work;
    std::shared_ptr<Work> work_;  ///< shared with the threads
};

}  // namespace brimvault::engine
