#include "engine/notification/NotificationCenter.h"

#include <gmock/gmock.h>

#include <QThread>
#include <QThreadPool>
#include <atomic>
#include <thread>
#include <utility>

#include "engine/model/FFItem.h"
#include "engine/notification/Notifications.h"
#include "support/EventLoop.h"
#include "support/TextPrinting.h"

namespace brimvault::tests {

using namespace engine;

namespace {

const QString name = QStringLiteral("somethingFinished");

}  // namespace

TEST(NotificationCenter, CallsTheObserversOfANameInTheirOrderBeforePostReturnsUntilTheyEnd) {
    std::vector<int> called;
    NotificationCenter::Observation second;  // goes after the center
    NotificationCenter center;
    auto first = center.addObserver(name, [&](const Notification&) { called.push_back(1); });
    const auto other = center.addObserver(QStringLiteral("other"), [&](const Notification&) { called.push_back(0); });
    second = center.addObserver(name, [&](const Notification& heard) {
        called.push_back(2);
        EXPECT_EQ(heard.name, name);
        EXPECT_EQ(getNumberPropfromNotification(heard, key::totalCount), 5);
    });
    const UserInfo info = {{key::totalCount, Number(5)}};
    auto moved = std::move(first);
    center.post(name, info);
    EXPECT_THAT(called, testing::ElementsAre(1, 2));
    moved = {};
    center.post(name, info);
    EXPECT_THAT(called, testing::ElementsAre(1, 2, 2));
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
            begun->notify_one();
            std::this_thread::yield();
            late += *ended ? 1 : 0;
        });
        begun->wait(false);
        observation.end();  // as a rule in the midst of the handler
        *ended = true;
    }
    EXPECT_EQ(late, 0);
}

// Also where nobody hears of them, since the context is gone.
TEST(NotificationCenter, HandsOverToTheMainThreadWithoutWaitingAndFreesManyItemsOnAnother) {
    constexpr int count = 5000;
    QThread* const main = QThread::currentThread();
    for (const bool isContextGone : {false, true}) {
        SCOPED_TRACE(isContextGone);
        std::atomic<int> freedByMain = 0;
        std::atomic<int> freedByOthers = 0;
        ItemArray items;
        for (int number = 0; number < count; ++number) {
            items.append({new FFItem, [&](FFItem* item) {
                              (QThread::currentThread() == main ? freedByMain : freedByOthers) += 1;
                              delete item;
                          }});
        }
        NotificationCenter center;
        auto context = std::make_unique<QObject>();
        std::vector<QThread*> threads;
        const auto hear = [&](const Notification& heard) {
            EXPECT_EQ(getArrayPropfromNotification<ItemArray>(heard, name)->size(), count);
            threads.push_back(QThread::currentThread());
        };
        const auto first = center.addMainThreadObserver(name, context.get(), hear);
        const auto second = center.addMainThreadObserver(name, context.get(), hear);
        std::thread([&] { center.post(name, {{name, items}}); }).join();
        center.post(name, {{name, std::exchange(items, {})}});
        EXPECT_TRUE(threads.empty()) << "at once";
        if (isContextGone) {
            context.reset();
        }
        runPending();
        EXPECT_EQ(threads, std::vector(isContextGone ? 0 : 4, main));
        QThreadPool::globalInstance()->waitForDone();
        EXPECT_EQ(freedByMain, 0);
        EXPECT_EQ(freedByOthers, count);
    }
}

TEST(Notification, GivesAValueOnlyAsTheKindItIs) {
    const QString list = QStringLiteral("list");
    const QString number = QStringLiteral("number");
    const QString reasons = QStringLiteral("reasons");
    const Notification some{name, {{list, ItemArray()}, {number, Number(1)}, {reasons, NotRemovedDictionary()}}};
    EXPECT_FALSE(getNumberPropfromNotification(some, key::totalCount));
    EXPECT_FALSE(getNumberPropfromNotification(some, list));
    EXPECT_TRUE(getArrayPropfromNotification<ItemArray>(some, list));
    EXPECT_FALSE(getArrayPropfromNotification<ApplicationArray>(some, list));
    EXPECT_FALSE(getArrayPropfromNotification<ItemArray>(some, number));
    EXPECT_TRUE(getDictionaryPropfromNotification<NotRemovedDictionary>(some, reasons));
    EXPECT_FALSE(getDictionaryPropfromNotification<CleanedApplications>(some, reasons));
}

}  // namespace brimvault::tests
