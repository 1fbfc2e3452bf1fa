#pragma once

#include <QFutureWatcher>
#include <QPromise>
#include <functional>
#include <memory>

#include "ui/services/AbandonablePool.h"

namespace brimvault::ui {

/// Calls that may block, on threads of a pool of their own, with answers on the main thread. Main thread.
///
/// A call that hangs, as on a volume that does not answer, is left behind at the end with its thread.
class BackgroundCalls final : public QObject {
public:
    explicit BackgroundCalls(int maxThreads) : pool_(maxThreads, timeToGiveUp) {}

    /// Calls `work` on a thread and later `done`, with what it answered, on the main thread.
    template <typename Answer>
    void call(std::function<Answer()> work, std::function<void(const Answer&)> done) {
        auto* watcher = new QFutureWatcher<Answer>(this);
        connect(watcher, &QFutureWatcherBase::finished, this, [watcher, done = std::move(done)] {
            watcher->deleteLater();
            done(watcher->result());
        });
        auto promise = std::make_shared<QPromise<Answer>>();
        watcher->setFuture(promise->future());
        pool_->start([promise, work = std::move(work)] {
            promise->start();
            promise->addResult(work());
            promise->finish();
        });
    }
    /// The same with nobody who waits for an answer.
    void call(std::function<void()> work) { pool_->start(std::move(work)); }
    /// Blocks until all calls have returned, a second at most.
    void waitUntilIdle() { pool_.waitForDone(); }

private:
    static constexpr std::chrono::seconds timeToGiveUp{1};

    AbandonablePool pool_;
};

}  // namespace brimvault::ui
