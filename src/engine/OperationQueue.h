#pragma once

#include <QThreadPool>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <vector>

#include "engine/Operation.h"

namespace brimvault::engine {

/// Runs operations on threads of its own, in the order in which they were added, each as soon as it is ready and the
/// limit allows. An operation is on the queue until it has finished. Any thread may call; destroying the queue cancels
/// everything and waits. Its threads stand back for the one that shows the window.
class OperationQueue {
public:
    /// Every section at once, an earlier scan of each still returning, and the completions.
    static constexpr int defaultConcurrency = 16;

    explicit OperationQueue(int maxConcurrentOperationCount = defaultConcurrency);
    OperationQueue(const OperationQueue&) = delete;
    OperationQueue& operator=(const OperationQueue&) = delete;
    ~OperationQueue();

    void addOperation(const std::shared_ptr<Operation>& operation);
    /// A snapshot: those that run, then those that wait, each in the order of adding.
    [[nodiscard]] std::vector<std::shared_ptr<Operation>> operations() const;
    /// Cancels everything on the queue and returns at once.
    void cancelAllOperations();
    /// Cancels all operations on the queue that are chosen, then waits for each of them to finish. Blocks the caller.
    void cancelAndWait(const std::function<bool(const Operation&)>& chosen);

private:
    void startReady();
    void runToEnd(const std::shared_ptr<Operation>& operation);

    mutable std::mutex mutex_;  ///< protects the two lists that follow
    std::list<std::shared_ptr<Operation>> waiting_;
    std::list<std::shared_ptr<Operation>> running_;
    const int maxConcurrentOperationCount_;
    QThreadPool pool_;
};

}  // namespace brimvault::engine
