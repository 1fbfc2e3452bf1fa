#include "engine/operations/OperationQueue.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <optional>
#include <semaphore>

#include "support/EventLoop.h"
#include "support/HeardNotifications.h"
#include "support/SectionWork.h"

namespace brimvault::tests {

using namespace engine;

namespace {

std::shared_ptr<SuppliedWork> work(SuppliedWork::Work function, Section section = Section::caches) {
    return std::make_shared<SuppliedWork>(std::move(function), section);
}

}  // namespace

// That a queue keeps its limit, and cancels and awaits the chosen operations alone, is in DriverTests.

TEST(OperationQueue, StartsAnOperationOnlyWhenAllItDependsOnHaveFinished) {
    OperationQueue queue;
    std::atomic<int> finished = 0;
    int seen = -1;
    const auto last = work([&](SuppliedWork&) { seen = finished; });
    std::binary_semaphore go(0);
    for (int number = 0; number < 3; ++number) {
        const auto before = work([&](SuppliedWork&) {
            go.acquire();
            ++finished;
            go.release();
        });
        last->addDependency(before);
        queue.addOperation(before);
    }
    queue.addOperation(last);
    EXPECT_FALSE(last->isFinished());
    go.release();
    last->waitUntilFinished();
    EXPECT_EQ(seen, 3);
}

TEST(OperationQueue, HasDroppedAnOperationWhenWaitingForItIsOver) {
    OperationQueue queue;
    for (int round = 0; round < 500; ++round) {
        const auto operation = work([](SuppliedWork&) {});
        queue.addOperation(operation);
        operation->waitUntilFinished();
        EXPECT_TRUE(queue.operations().empty());
    }
}

TEST(OperationQueue, GivesUpWhatHangsAndGoesOnWithoutIt) {
    const QString name = QStringLiteral("posted by what hangs");
    const HeardNotifications heard = {name};
    QObject context;
    int handed = 0;
    auto observation =
        NotificationCenter::defaultCenter().addMainThreadObserver(name, &context, [&](const auto&) { ++handed; });
    const auto hang = std::make_shared<Hang>();
    const auto post = [name] { NotificationCenter::defaultCenter().post(name); };
    std::optional<OperationQueue> queue(1);
    const auto hanging = work([hang, post](SuppliedWork&) {
        post();
        hang->wait(OperationQueue::returnTimeout * 6);  // nobody waits for that
        post();
    });
    int completions = 0;
    hanging->setCompletionBlock([&] { ++completions; });
    const auto next = work([](SuppliedWork&) {}, Section::trash);
    next->addDependency(hanging);
    queue->addOperation(hanging);
    queue->addOperation(next);
    ASSERT_TRUE(runUntil([&] { return hang->holdsAny() && handed == 1; }));
    post();
    cancelSectionAndWait(*queue, Section::caches);
    EXPECT_TRUE(hanging->isFinished());
    EXPECT_EQ(completions, 1);
    next->waitUntilFinished();
    ASSERT_TRUE(runUntil([&] { return handed == 2; })) << "it is not the queue that posted in between";
    EXPECT_EQ(queue->leftBehind(), (std::vector<std::shared_ptr<Operation>>{hanging}));
    hang->letOn();
    ASSERT_TRUE(runUntil([&] { return queue->leftBehind().empty(); }));
    runPending();
    EXPECT_EQ(handed, 2);
    EXPECT_EQ(heard.names().size(), 2);
    EXPECT_EQ(completions, 1);

    // What was handed over before is recalled as well, and a queue goes without what it has given up.
    const auto other = std::make_shared<Hang>();
    std::binary_semaphore posted(0);
    queue->addOperation(work([other, post, &posted](SuppliedWork&) {
        post();
        posted.release();
        other->wait();
    }));
    posted.acquire();
    EXPECT_EQ(queue->giveUp([](const Operation&) { return true; }).size(), 1U);
    queue.reset();
    runPending();
    EXPECT_EQ(handed, 2);
    other->letOn();
}

TEST(OperationQueue, CancelsAndAwaitsEverythingWhenItIsDestroyedAndBeginsNothingMore) {
    std::atomic<int> ended = 0;
    std::atomic<int> completions = 0;
    std::vector<std::shared_ptr<Operation>> all;
    {
        OperationQueue queue(2);
        for (int number = 0; number < 5; ++number) {
            all.push_back(work([&](SuppliedWork& own) {
                awaitCancel(own);
                ++ended;
            }));
            all.back()->setCompletionBlock([&] { ++completions; });
            queue.addOperation(all.back());
        }
    }
    EXPECT_TRUE(std::all_of(all.begin(), all.end(), [](const auto& operation) { return operation->isFinished(); }));
    EXPECT_LE(ended, 2);
    EXPECT_EQ(completions, 5);
}

}  // namespace brimvault::tests
