#pragma once

#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <stop_token>

namespace brimvault::files {

/// Work that others can help with while it is under way.
class SharedWork {
public:
    virtual ~SharedWork() = default;
    /// Does of it what there is to do, and returns once that is nothing: false when it was nothing from the beginning.
    /// Called by several threads at once.
    virtual bool help() noexcept = 0;
    /// With whom it ends. Work of the same token serves the same caller.
    [[nodiscard]] virtual const std::stop_token& stopToken() const = 0;
};

/// The threads that help with whatever work is offered, whoever does it. Who offers work does it himself all the same;
/// with no thread to be had it is done, later. Any thread.
class WorkPool {
public:
    /// With who offers the work two for each processor, as one of them may wait for the disk; and no more than this:
    /// what each holds open of a deep tree is to fit into what a process may.
    static constexpr unsigned mostThreads = 15;

    /// One for the process; its threads start with the first work offered, and end with the process. A process that was
    /// forked from one with threads has none, and does its work alone.
    static WorkPool& shared();

    WorkPool(const WorkPool&) = delete;
    WorkPool& operator=(const WorkPool&) = delete;

    /// To stay until it is withdrawn.
    void offer(SharedWork& work);
    /// Returns when nobody helps with it any more, and nobody will.
    void withdraw(SharedWork& work);
    /// Helps, on the calling thread, with other work of the same token, if that can be stopped at all; false when there
    /// is nothing to do.
    bool helpFellowsOf(const SharedWork& work);

private:
    struct Offer {
        SharedWork* work;
        int helpers = 0;
        bool withdrawn = false;
    };
    using Offers = std::list<Offer>;

    explicit WorkPool(bool mayStart);
    static unsigned threadsToStart();
    void startThreads();
    void helpForEver();
    bool helpOne(std::unique_lock<std::mutex>& lock, const std::function<bool(const Offer&)>& chosen);

    const int process_;  ///< whose it is
    std::mutex mutex_;   ///< protects what follows
    std::condition_variable offered_;
    std::condition_variable left_;
    Offers offers_;
    bool mayStart_;
};

}  // namespace brimvault::files
