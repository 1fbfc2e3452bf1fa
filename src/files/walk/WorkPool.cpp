#include "files/walk/WorkPool.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <system_error>
#include <thread>
#include <utility>

#include "files/walk/ThreadPriority.h"

namespace brimvault::files {

namespace {

// Work that has nothing to give just now is asked again after this.
constexpr std::chrono::microseconds untilAskedAgain(500);

}  // namespace

WorkPool::WorkPool(bool mayStart) : process_(::getpid()), mayStart_(mayStart) {}

// Never destroyed: its threads may outlive everything else. A fork leaves the threads behind, and perhaps a lock that
// one of them held for ever held.
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
    offered_.notify_all();
}

void WorkPool::withdraw(SharedWork& work) {
    std::unique_lock lock(mutex_);
    const auto offer =
        std::find_if(offers_.begin(), offers_.end(), [&](const Offer& known) { return known.work == &work; });
    if (offer != offers_.end()) {
        offer->withdrawn = true;
        left_.wait(lock, [&] { return offer->helpers == 0; });
        offers_.erase(offer);
    }
}

bool WorkPool::helpFellowsOf(const SharedWork& work) {
    const auto isFellow = [&](const Offer& offer) {
        const auto& token = offer.work->stopToken();
        return offer.work != &work && token.stop_possible() && token == work.stopToken();
    };
    std::unique_lock lock(mutex_);
    return helpOne(lock, isFellow);
}

// The work with the fewest helpers; of these, the one that was helped with the longest time ago.
bool WorkPool::helpOne(std::unique_lock<std::mutex>& lock, const std::function<bool(const Offer&)>& chosen) {
    auto fewest = offers_.end();
    for (auto offer = offers_.begin(); offer != offers_.end(); ++offer) {
        if (!offer->withdrawn && chosen(*offer) && (fewest == offers_.end() || offer->helpers < fewest->helpers)) {
            fewest = offer;
        }
    }
    if (fewest == offers_.end()) {
        return false;
    }
    offers_.splice(offers_.end(), offers_, fewest);
    ++fewest->helpers;
    lock.unlock();
    const bool hasHelped = fewest->work->help();
    lock.lock();
    if (--fewest->helpers == 0) {
        left_.notify_all();
    }
    return hasHelped;
}

// What each holds open of a deep tree is to fit into what the process may.
unsigned WorkPool::threadsToStart() {
    constexpr rlim_t descriptorsEach = 32;
    rlimit descriptors{};
    const bool isKnown = ::getrlimit(RLIMIT_NOFILE, &descriptors) == 0;
    const unsigned wanted = 2 * std::max(std::thread::hardware_concurrency(), 1U) - 1;
    const rlim_t fitting = isKnown ? descriptors.rlim_cur / descriptorsEach : mostThreads;
    return static_cast<unsigned>(std::min<rlim_t>({wanted, mostThreads, fitting}));
}

// Called with the lock held. Where the system gives no thread, there is one helper less.
void WorkPool::startThreads() {
    if (!std::exchange(mayStart_, false)) {
        return;
    }
    try {
        for (unsigned count = threadsToStart(); count > 0; --count) {
            std::thread([this] { helpForEver(); }).detach();
        }
    } catch (const std::system_error&) {
    }
}

void WorkPool::helpForEver() {
    lowerThreadPriority();
    std::unique_lock lock(mutex_);
    for (std::size_t inVain = 0;;) {
        offered_.wait(lock, [this] { return !offers_.empty(); });
        inVain = helpOne(lock, [](const Offer&) { return true; }) ? 0 : inVain + 1;
        if (inVain >= offers_.size()) {  // nothing has anything to give just now
            offered_.wait_for(lock, untilAskedAgain);
            inVain = 0;
        }
    }
}

}  // namespace brimvault::files
