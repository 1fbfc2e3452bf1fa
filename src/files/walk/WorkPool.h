#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <stop_token>

namespace brimvault::files {

/// Work that pool threads can help with while its owner is at it.
class SharedWork {
public:
    virtual ~SharedWork() = default;
    /// Whether `help` would find something to do. Any thread; called with the pool locked, so it must not call the
    /// pool.
    [[nodiscard]] virtual bool hasWork() const noexcept = 0;
    /// Works until nothing is left to take. Called by several threads at once.
    virtual void help() noexcept = 0;
    /// Stops the work. Works with the same token serve the same caller.
    [[nodiscard]] virtual const std::stop_token& stopToken() const = 0;
};

/// Process-wide worker threads. The owner always works on its own task too, so it finishes even if no thread can be
/// started. An idle thread sleeps until it is woken for work: nothing polls. Any thread.
class WorkPool {
public:
    /// Two threads per CPU including the owner, to overlap disk waits; capped so that their open descriptors stay
    /// within RLIMIT_NOFILE.
    static constexpr unsigned maxThreads = 15;

    /// One for the process; its threads start with the first offer and end with the process. A process that was forked
    /// from one with threads has none, and does its work alone.
    static WorkPool& shared();
    /// How many threads it starts, where the system grants them.
    static unsigned threadCount();

    WorkPool(const WorkPool&) = delete;
    WorkPool& operator=(const WorkPool&) = delete;

    /// Lets idle threads help with the work until it is withdrawn.
    void offer(SharedWork& work);
    /// Returns when no thread helps any more, and none will.
    void withdraw(SharedWork& work);

    /// Whether a thread is idle. Cheap enough to ask for each folder.
    [[nodiscard]] bool hasIdleThread() const { return hasIdleThread_.load(std::memory_order_relaxed); }
    /// Wakes one idle thread. Call it after offered work has got something more to take: `hasWork` answers true.
    void wakeHelper(const SharedWork& work);

    /// Blocks until `isDone` answers true, and meanwhile helps other works with the same token, if that one can be
    /// stopped at all. `isDone` is called with the pool locked: on entry, and after each `wakeOwner` of the work.
    void helpUntil(const SharedWork& work, const std::function<bool()>& isDone);
    /// Wakes the thread that waits in `helpUntil` for this work. Call it after `isDone` has become true.
    void wakeOwner(const SharedWork& work);

private:
    struct Offer {
        SharedWork* work;
        int helpers = 0;
        std::condition_variable* withdrawer = nullptr;  ///< who waits for the last helper to leave
    };
    using Offers = std::list<Offer>;
    using Filter = std::function<bool(const SharedWork&)>;

    /// A sleeping thread, on its own stack.
    struct Sleeper {
        const SharedWork* owned = nullptr;  ///< what it waits for in `helpUntil`; null for a thread of the pool
        Sleeper* next = nullptr;
        bool isWoken = false;
        std::condition_variable wake;
    };

    explicit WorkPool(bool mayStart);
    void startThreads();
    void runThread();
    Offers::iterator findWork(const Filter& filter);
    bool helpOne(std::unique_lock<std::mutex>& lock, const Filter& filter);
    void sleep(std::unique_lock<std::mutex>& lock, Sleeper& self);
    bool wakeOne(const std::function<bool(const Sleeper&)>& chosen);
    bool wakeFor(const SharedWork& work);

    const int process_;  ///< whose it is
    std::atomic<bool> hasIdleThread_ = false;

    std::mutex mutex_;  ///< protects what follows
    Offers offers_;
    Sleeper* sleepers_ = nullptr;  ///< not woken yet; the one that fell asleep last comes first
    bool mayStart_;
};

}  // namespace brimvault::files
