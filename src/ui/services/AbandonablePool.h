#pragma once

#include <QThreadPool>
#include <chrono>

namespace brimvault::ui {

/// A thread pool for work that may hang, on a dead volume for instance. A QThreadPool waits in its destructor until all
/// work has ended; this one waits for the timeout and then leaks the pool on purpose. Main thread.
class AbandonablePool {
public:
    AbandonablePool(int maxThreads, std::chrono::milliseconds timeout) : timeout_(timeout), pool_(new QThreadPool) {
        pool_->setMaxThreadCount(maxThreads);
    }
    Q_DISABLE_COPY_MOVE(AbandonablePool)
    ~AbandonablePool() {
        if (waitForDone()) {
            delete pool_;
        }
    }

    /// False if work is still going on after the timeout.
    bool waitForDone() { return pool_->waitForDone(static_cast<int>(timeout_.count())); }
    [[nodiscard]] QThreadPool* operator->() const { return pool_; }
    [[nodiscard]] QThreadPool& operator*() const { return *pool_; }

private:
    const std::chrono::milliseconds timeout_;
    QThreadPool* const pool_;
};

}  // namespace brimvault::ui
