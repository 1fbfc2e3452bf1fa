#include "files/walk/WorkPool.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <system_error>
#include <thread>
#include <utility>

#include "files/walk/ThreadPriority.h"

// Why no wake-up is lost
//
// Work becomes available first (SharedWork::hasWork), and only then the pool is locked to wake somebody. A thread looks
// for work and falls asleep under one lock: either it looks after the waker had the lock, and sees the work, or it is
// asleep by then, and is woken. With nobody asleep the work stays where it is: every thread looks again before it
// sleeps. A thread that was woken and does not help after all passes the wake-up on (helpUntil).

namespace brimvault::files {

namespace {

bool isSameCaller(const SharedWork& one, const SharedWork& other) {
    const auto& token = one.stopToken();
    return &one != &other && token.stop_possible() && token == other.stopToken();
}

}  // namespace

WorkPool::WorkPool(bool mayStart) : process_(::getpid()), mayStart_(mayStart) {}

// Never destroyed: its threads may outlive everything else. After a fork the child has no threads, and a lock that one
// of them held would stay locked for ever: it gets a pool of its own.
WorkPool& WorkPool::shared() {
    static std::atomic<WorkPool*> pool = new WorkPool(true);
    auto* known = pool.load();
    if (known->process_ != ::getpid()) {
        auto* const own = new WorkPool(false);
        if (pool.compare_exchange_strong(known, own)) {
            return *own;
        }
        delete own;
    }
    return *known;
}

void WorkPool::offer(SharedWork& work) {
    const std::lock_guard lock(mutex_);
    startThreads();
    offers_.push_back({&work});
    while (work.hasWork() && wakeFor(work)) {
    }
}

void WorkPool::withdraw(SharedWork& work) {
    std::unique_lock lock(mutex_);
    const auto offer =
        std::find_if(offers_.begin(), offers_.end(), [&](const Offer& known) { return known.work == &work; });
    if (offer != offers_.end()) {
        std::condition_variable left;
        offer->withdrawer = &left;
        left.wait(lock, [&] { return offer->helpers == 0; });
        offers_.erase(offer);
    }
}

void WorkPool::wakeHelper(const SharedWork& work) {
    const std::lock_guard lock(mutex_);
    wakeFor(work);
}

void WorkPool::helpUntil(const SharedWork& work, const std::function<bool()>& isDone) {
    const auto isRelated = [&](const SharedWork& other) { return isSameCaller(work, other); };
    Sleeper self;
    self.owned = &work;
    std::unique_lock lock(mutex_);
    while (!isDone()) {
        if (!helpOne(lock, isRelated)) {
            sleep(lock, self);
        }
    }
    if (const auto left = findWork(isRelated); left != offers_.end()) {
        wakeFor(*left->work);
    }
}

void WorkPool::wakeOwner(const SharedWork& work) {
    const std::lock_guard lock(mutex_);
    wakeOne([&](const Sleeper& sleeper) { return sleeper.owned == &work; });
}

// The work with the fewest helpers; of these, the one that was helped with the longest time ago.
WorkPool::Offers::iterator WorkPool::findWork(const Filter& filter) {
    auto found = offers_.end();
    for (auto offer = offers_.begin(); offer != offers_.end(); ++offer) {
        const bool isCandidate = offer->withdrawer == nullptr && offer->work->hasWork() && filter(*offer->work);
        if (isCandidate && (found == offers_.end() || offer->helpers < found->helpers)) {
            found = offer;
        }
    }
    return found;
}

// False when there is nothing to help with. Unlocks meanwhile.
bool WorkPool::helpOne(std::unique_lock<std::mutex>& lock, const Filter& filter) {
    const auto offer = findWork(filter);
    if (offer == offers_.end()) {
        return false;
    }
    offers_.splice(offers_.end(), offers_, offer);
    ++offer->helpers;
    lock.unlock();
    offer->work->help();
    lock.lock();
    if (--offer->helpers == 0 && offer->withdrawer != nullptr) {
        offer->withdrawer->notify_one();
    }
    return true;
}

void WorkPool::sleep(std::unique_lock<std::mutex>& lock, Sleeper& self) {
    self.isWoken = false;
    self.next = std::exchange(sleepers_, &self);
    hasIdleThread_.store(true, std::memory_order_relaxed);
    self.wake.wait(lock, [&] { return self.isWoken; });
}

// Called with the lock held, as wakeFor.
bool WorkPool::wakeOne(const std::function<bool(const Sleeper&)>& chosen) {
    for (auto** place = &sleepers_; *place != nullptr; place = &(*place)->next) {
        auto* const sleeper = *place;
        if (chosen(*sleeper)) {
            *place = sleeper->next;
            hasIdleThread_.store(sleepers_ != nullptr, std::memory_order_relaxed);
            sleeper->isWoken = true;
            sleeper->wake.notify_one();
            return true;
        }
    }
    return false;
}

// The pool's own threads before owners that wait: these will soon have something else to do.
bool WorkPool::wakeFor(const SharedWork& work) {
    return wakeOne([](const Sleeper& sleeper) { return sleeper.owned == nullptr; }) ||
           wakeOne(
               [&](const Sleeper& sleeper) { return sleeper.owned != nullptr && isSameCaller(*sleeper.owned, work); });
}

// What each holds open of a deep tree is to fit into what the process may.
unsigned WorkPool::threadCount() {
    constexpr rlim_t descriptorsEach = 32;
    rlimit descriptors{};
    const bool isKnown = ::getrlimit(RLIMIT_NOFILE, &descriptors) == 0;
    const unsigned wanted = 2 * std::max(std::thread::hardware_concurrency(), 1U) - 1;
    const rlim_t fitting = isKnown ? descriptors.rlim_cur / descriptorsEach : maxThreads;
    return static_cast<unsigned>(std::min<rlim_t>({wanted, maxThreads, fitting}));
}

// Called with the lock held. Where the system gives no thread, there is one helper less.
void WorkPool::startThreads() {
    if (!std::exchange(mayStart_, false)) {
        return;
    }
    try {
        for (unsigned count = threadCount(); count > 0; --count) {
            std::thread([this] { runThread(); }).detach();
        }
    } catch (const std::system_error&) {
    }
}

void WorkPool::runThread() {
    lowerThreadPriority();
    Sleeper self;
    std::unique_lock lock(mutex_);
    for (;;) {
        if (!helpOne(lock, [](const SharedWork&) { return true; })) {
            sleep(lock, self);
        }
    }
}

}  // namespace brimvault::files
