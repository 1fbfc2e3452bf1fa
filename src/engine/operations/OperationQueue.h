#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

#include "engine/operations/Operation.h"

namespace brimvault::engine {

/// Runs operations on threads of its own, in the order in which they were added, each as soon as it is ready and the
/// limit allows. An operation is on the queue until it has finished. Any thread may call; destroying the queue cancels
/// everything and waits. Its threads stand back for the one that shows the window.
///
/// One that hangs can be given up: it leaves the queue, which neither waits for it nor counts it any more. The thread
/// that it holds is left behind until its work returns, perhaps after the queue is gone.
class OperationQueue {
public:
    /// Every section at once, an earlier scan of each still returning, and the completions.
    static constexpr int defaultConcurrency = 16;
    /// Cancelled scans look at their flag many times a second; one that has not returned by then is taken to hang. A
    /// clean finishes the item under way, so that who gives cleans up looks first whether they get on
    /// (files::entriesRemoved).
    static constexpr std::chrono::milliseconds timeToReturn{1000};

    using Chosen = std::function<bool(const Operation&)>;

    explicit OperationQueue(int maxConcurrentOperationCount = defaultConcurrency);
    OperationQueue(const OperationQueue&) = delete;
    OperationQueue& operator=(const OperationQueue&) = delete;
    ~OperationQueue();

    void addOperation(const std::shared_ptr<Operation>& operation);
    /// A snapshot: those that run, then those that wait, each in the order of adding.
    [[nodiscard]] std::vector<std::shared_ptr<Operation>> operations() const;
    /// Cancels everything on the queue and returns at once.
    void cancelAllOperations();
    /// Cancels all operations on the queue that are chosen, then waits for each of them to finish. Blocks the caller,
    /// but no longer than `timeToReturn`: what hangs by then is given up, and what still waits finishes without its
    /// work.
    void cancelAndWait(const Chosen& chosen);
    /// Cancels and gives up those that run and are chosen; returns at once, with them.
    std::vector<std::shared_ptr<Operation>> giveUp(const Chosen& chosen);
    /// A snapshot of those that were given up and have not returned from their work.
    [[nodiscard]] std::vector<std::shared_ptr<Operation>> leftBehind() const;

private:
    class Work;
    std::shared_ptr<Work> work_;  ///< shared with the threads
};

}  // namespace brimvault::engine
