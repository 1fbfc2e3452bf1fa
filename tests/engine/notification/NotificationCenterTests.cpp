#include "engine/notification/NotificationCenter.h"

#include <gmock/gmock.h>

#include <QThread>
#include <QThreadPool>
#include <atomic>
#include <optional>
#include <thread>

#include "engine/model/FFItem.h"
#include "engine/notification/Notifications.h"
#include "support/EventLoop.h"
#include "support/TextPrinting.h"

namespace brimvault::tests {

using engine::Notification;
using engine::NotificationCenter;

namespace {

const QString name = QStringLiteral("somethingFinished");

// Many items that count, when they are freed, on which thread that happens.
class CountedItems {
public:
    static constexpr int count = 5000;

    [[nodiscard]] engine::ItemArray make() {
        engine::ItemArray items;
        for (int number = 0; number < count; ++number) {
            items.append({new engine::FFItem, [this](engine::FFItem* item) {
                              (QThread::currentThread() == main_ ? freedByMain_ : freedByOthers_) += 1;
                              delete item;
                          }});
        }
        return items;
    }
    void expectFreedByOthers() const {
        QThreadPool::globalInstance()->waitForDone();
        EXPECT_EQ(freedByMain_, 0);
        EXPECT_EQ(freedByOthers_, count);
    }

private:
    QThread* const main_ = QThread::currentThread();
    std::atomic<int> freedByMain_ = 0;
    std::atomic<int> freedByOthers_ = 0;
};

}  // namespace

TEST(NotificationCenter, CallsTheObserversOfANameInTheirOrderBeforePostReturns) {
    NotificationCenter center;
    std::vector<int> called;
    const auto first = center.addObserver(name, [&](const Notification&) { called.push_back(1); });
    const auto other = center.addObserver(QStringLiteral("other"), [&](const Notification&) { called.push_back(0); });
    const auto second = center.addObserver(name, [&](const Notification& heard) {
        called.push_back(2);
        EXPECT_EQ(heard.name, name);
        EXPECT_EQ(getNumberPropfromNotification(heard, engine::key::totalCount), 5);
    });
    center.post(name, {{engine::key::totalCount, engine::Number(5)}});
    EXPECT_THAT(called, testing::ElementsAre(1, 2));
}

TEST(NotificationCenter, CallsNobodyWhoseObservationHasEnded) {
    NotificationCenter center;
    int calls = 0;
    auto observation = center.addObserver(name, [&](const Notification&) { ++calls; });
    auto moved = std::move(observation);
    center.post(name);
    EXPECT_EQ(calls, 1);
    moved = {};
    center.post(name);
    EXPECT_EQ(calls, 1);
}

TEST(NotificationCenter, LetsAHandlerEndItselfAndPostAgain) {
    NotificationCenter center;
    int calls = 0;
    NotificationCenter::Observation own;
    own = center.addObserver(name, [&](const Notification&) {
        if (++calls == 2) {
            own.end();
        }
        center.post(name);
    });
    center.post(name);
    EXPECT_EQ(calls, 2);
}

TEST(NotificationCenter, CallsNoHandlerAfterItsEndWhileAnotherThreadPosts) {
    NotificationCenter center;
    const std::jthread poster([&](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            center.post(name);
        }
    });
    std::atomic<int> late = 0;
    for (int round = 0; round < 500; ++round) {
        const auto begun = std::make_shared<std::atomic<bool>>(false);
        const auto ended = std::make_shared<std::atomic<bool>>(false);
        auto observation = center.addObserver(name, [&late, begun, ended](const Notification&) {
            *begun = true;
            std::this_thread::yield();
            late += *ended ? 1 : 0;
        });
        while (!*begun) {
            std::this_thread::yield();
        }
        observation.end();  // as a rule in the midst of the handler
        *ended = true;
    }
    EXPECT_EQ(late, 0);
}

TEST(NotificationCenter, MayGoBeforeAnObservation) {
    std::optional<NotificationCenter> center(std::in_place);
    auto observation = center->addObserver(name, [](const Notification&) {});
    center.reset();
    observation.end();
}

TEST(NotificationCenter, HandsOverToTheMainThreadWithoutWaiting) {
    NotificationCenter center;
    QObject context;
    std::vector<QThread*> threads;
    const auto observation = center.addMainThreadObserver(
        name, &context, [&](const Notification&) { threads.push_back(QThread::currentThread()); });
    std::thread([&] { center.post(name); }).join();
    center.post(name);
    EXPECT_TRUE(threads.empty());
    runPending();
    EXPECT_THAT(threads, testing::ElementsAre(context.thread(), context.thread()));
}

TEST(NotificationCenter, DropsWhatWasHandedOverWhenTheContextIsGone) {
    NotificationCenter center;
    auto context = std::make_unique<QObject>();
    auto observation =
        center.addMainThreadObserver(name, context.get(), [](const Notification&) { ADD_FAILURE() << "called"; });
    center.post(name);
    observation.end();
    context.reset();
    runPending();
}

TEST(NotificationCenter, FreesManyItemsOnAnotherThreadThanTheObservers) {
    NotificationCenter center;
    QObject context;
    int calls = 0;
    const auto hear = [&](const Notification& heard) {
        const auto items = engine::getArrayPropfromNotification<engine::ItemArray>(heard, name);
        calls += items && items->size() == CountedItems::count ? 1 : 0;
    };
    const auto first = center.addMainThreadObserver(name, &context, hear);
    const auto second = center.addMainThreadObserver(name, &context, hear);
    CountedItems items;
    std::thread([&] { center.post(name, {{name, items.make()}}); }).join();
    runPending();
    EXPECT_EQ(calls, 2);
    items.expectFreedByOthers();
}

TEST(NotificationCenter, FreesManyItemsOnAnotherThreadWhenNobodyHearsOfThem) {
    NotificationCenter center;
    auto context = std::make_unique<QObject>();
    auto observation = center.addMainThreadObserver(name, context.get(), [](const Notification&) {});
    CountedItems items;
    std::thread([&] { center.post(name, {{name, items.make()}}); }).join();
    observation.end();
    context.reset();
    items.expectFreedByOthers();
}

TEST(Notification, GivesAValueOnlyAsTheKindItIs) {
    const Notification none{name, {}};
    const Notification some{name,
                            {{engine::key::totalCount, engine::ItemArray()},
                             {QStringLiteral("array"), engine::Number(1)},
                             {QStringLiteral("dictionary"), engine::NotRemovedDictionary()}}};
    EXPECT_FALSE(getNumberPropfromNotification(none, engine::key::totalCount));
    EXPECT_FALSE(getNumberPropfromNotification(some, engine::key::totalCount));
    EXPECT_TRUE(engine::getArrayPropfromNotification<engine::ItemArray>(some, engine::key::totalCount));
    EXPECT_FALSE(engine::getArrayPropfromNotification<engine::ApplicationArray>(some, engine::key::totalCount));
    EXPECT_FALSE(engine::getArrayPropfromNotification<engine::ItemArray>(some, QStringLiteral("array")));
    EXPECT_TRUE(
        engine::getDictionaryPropfromNotification<engine::NotRemovedDictionary>(some, QStringLiteral("dictionary")));
    EXPECT_FALSE(
        engine::getDictionaryPropfromNotification<engine::CleanedApplications>(some, QStringLiteral("dictionary")));
}

}  // namespace brimvault::tests
