// Threads that sleep until there is work: none is woken in vain, and none sleeps on.

#include "files/walk/WorkPool.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <fstream>
#include <functional>
#include <semaphore>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>

#include "files/walk/AheadOf.h"
#include "trial/WakeUps.h"

namespace brimvault::tests {

using files::WorkPool;

namespace {

template <typename Number>
void awaitAtLeast(const std::atomic<Number>& number, Number expected) {
    for (Number known = number; known < expected; known = number) {
        number.wait(known);
    }
}

// Units of work that are put in one by one. The owner does none of them.
class Units final : public files::SharedWork {
public:
    explicit Units(std::stop_token stop = {}) : stop_(std::move(stop)) { WorkPool::shared().offer(*this); }
    Units(const Units&) = delete;
    Units& operator=(const Units&) = delete;
    ~Units() override { WorkPool::shared().withdraw(*this); }

    void put() {
        ++pending_;
        WorkPool::shared().wakeHelper(*this);
    }
    void awaitDone(int count) const { awaitAtLeast(done_, count); }
    [[nodiscard]] std::thread::id lastHelper() const { return lastHelper_; }

    // Has `call` called by the thread that finds no unit next, and is about to sleep.
    void beforeSleep(std::function<void()> call) {
        call_ = std::move(call);
        isCallWanted_ = true;
    }

    [[nodiscard]] bool hasWork() const noexcept override {
        const bool answer = pending_ > 0;
        if (!answer && isCallWanted_.exchange(false)) {
            call_();
        }
        return answer;
    }
    void help() noexcept override {
        for (int known = pending_; known > 0; known = pending_) {
            if (pending_.compare_exchange_weak(known, known - 1)) {
                lastHelper_ = std::this_thread::get_id();
                ++done_;
                done_.notify_all();
            }
        }
    }
    [[nodiscard]] const std::stop_token& stopToken() const override { return stop_; }

private:
    const std::stop_token stop_;
    std::function<void()> call_;
    mutable std::atomic<bool> isCallWanted_ = false;
    std::atomic<int> pending_ = 0;
    std::atomic<int> done_ = 0;
    std::atomic<std::thread::id> lastHelper_;
};

// Holds every thread of the pool.
class Barrier final : public files::SharedWork {
public:
    Barrier() {
        WorkPool::shared().offer(*this);
        awaitAtLeast(held_, WorkPool::threadCount());
    }
    Barrier(const Barrier&) = delete;
    Barrier& operator=(const Barrier&) = delete;
    ~Barrier() override {
        gate_.release(WorkPool::maxThreads);
        WorkPool::shared().withdraw(*this);
    }

    void letOneThrough() { gate_.release(); }
    void takeMore() { max_ = WorkPool::maxThreads + 1; }
    [[nodiscard]] unsigned held() const { return held_; }

    [[nodiscard]] bool hasWork() const noexcept override { return held_ < max_; }
    void help() noexcept override {
        ++held_;
        held_.notify_all();
        gate_.acquire();
    }
    [[nodiscard]] const std::stop_token& stopToken() const override { return stop_; }

private:
    const std::stop_token stop_;
    std::atomic<unsigned> max_ = WorkPool::threadCount();
    std::atomic<unsigned> held_ = 0;
    std::counting_semaphore<> gate_{0};
};

void awaitSleep(const std::atomic<pid_t>& thread) {
    thread.wait(0);
    for (std::string state; state != "S"; std::this_thread::yield()) {
        std::ifstream status("/proc/self/task/" + std::to_string(thread) + "/status");
        for (std::string word; status >> word && word != "State:";) {
        }
        status >> state;
    }
}

// Ends a test that would wait for ever: SIGALRM ends the program.
class WorkPoolTest : public testing::Test {
protected:
    void SetUp() override { ::alarm(120); }
    void TearDown() override { ::alarm(0); }
};
using AheadOf = WorkPoolTest;

}  // namespace

TEST_F(WorkPoolTest, WakesAHelperForEveryUnitOfWork) {
    Units units;
    for (int count = 1; count <= 5000; ++count) {
        units.put();
        units.awaitDone(count);
    }
}

// The only thread that is free has found nothing, and does not sleep yet.
TEST_F(WorkPoolTest, WakesAHelperThatIsJustFallingAsleep) {
    Barrier barrier;
    Units units;
    std::atomic<bool> isFallingAsleep = false;
    units.beforeSleep([&] {
        isFallingAsleep = true;
        isFallingAsleep.notify_all();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));  // while the unit comes
    });
    barrier.letOneThrough();
    isFallingAsleep.wait(false);
    units.put();
    units.awaitDone(1);
}

TEST_F(WorkPoolTest, WakesNobodyWhileThereIsNothingToDo) {
    Units units;
    units.put();
    units.awaitDone(1);  // the threads run
    bool isQuiet = false;
    for (int attempt = 0; attempt < 100 && !isQuiet; ++attempt) {
        constexpr long ourOwn = 1;
        const long before = trial::wakeUps();
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        isQuiet = trial::wakeUps() - before <= ourOwn;
    }
    EXPECT_TRUE(isQuiet);
}

TEST_F(WorkPoolTest, HasAnOwnerThatWaitsHelpWithWorkOfTheSameCaller) {
    const std::stop_source caller;
    const Barrier barrier;
    const Units awaited(caller.get_token());
    Units others(std::stop_source().get_token());
    Units related(caller.get_token());
    std::atomic<bool> isDone = false;
    const std::jthread giver([&] {
        while (!WorkPool::shared().hasIdleThread()) {  // until the owner sleeps
            std::this_thread::yield();
        }
        others.put();
        related.put();
        related.awaitDone(1);
        isDone = true;
        WorkPool::shared().wakeOwner(awaited);
    });
    WorkPool::shared().helpUntil(awaited, [&] { return isDone.load(); });
    EXPECT_EQ(related.lastHelper(), std::this_thread::get_id());
    EXPECT_EQ(others.lastHelper(), std::thread::id());
}

// Its owner waits for the helpers to leave, to destroy it. The one that leaves finds more to do, and must not take it.
TEST_F(WorkPoolTest, GivesNobodyWhatIsBeingWithdrawn) {
    Barrier barrier;
    std::atomic<pid_t> owner = 0;
    const std::jthread withdrawal([&] {
        owner = ::gettid();
        owner.notify_all();
        WorkPool::shared().withdraw(barrier);
    });
    awaitSleep(owner);
    barrier.takeMore();
    barrier.letOneThrough();
    while (!WorkPool::shared().hasIdleThread() && barrier.held() == WorkPool::threadCount()) {
        std::this_thread::yield();
    }
    EXPECT_EQ(barrier.held(), WorkPool::threadCount());
    for (unsigned count = 1; count < WorkPool::maxThreads; ++count) {
        barrier.letOneThrough();
    }
}

TEST_F(AheadOf, GivesEveryAnswerOnceInOrderOrSaysWhyThereIsNone) {
    constexpr std::size_t count = 5000;
    constexpr std::size_t none = 50;
    std::atomic<std::size_t> calls = 0;
    files::AheadOf<std::size_t> squares(count, {}, [&](std::size_t number) {
        if (number == none) {
            throw std::runtime_error("none");
        }
        ++calls;
        return number * number;
    });
    for (std::size_t number = 0; number < count; ++number) {
        if (number == none) {
            EXPECT_THROW(squares.take(number), std::runtime_error);
        } else {
            ASSERT_EQ(squares.take(number), number * number);
        }
    }
    EXPECT_EQ(calls, count - 1);
}

// Helpers keep their results back until the owner has nothing left to compute: it is just about to sleep.
TEST_F(AheadOf, WakesTheOwnerThatWaitsForAResult) {
    constexpr std::size_t count = 8;
    for (int round = 0; round < 500; ++round) {
        const auto owner = std::this_thread::get_id();
        std::atomic<std::size_t> begun = 0;
        std::atomic<bool> hasHelper = false;
        files::AheadOf<std::size_t> results(count, {}, [&](std::size_t number) {
            ++begun;
            const bool isHelper = std::this_thread::get_id() != owner;
            hasHelper = hasHelper || isHelper;
            while (isHelper ? begun < count : !hasHelper) {
                std::this_thread::yield();
            }
            return number;
        });
        for (std::size_t number = 0; number < count; ++number) {
            ASSERT_EQ(results.take(number), number);
        }
    }
}

}  // namespace brimvault::tests
