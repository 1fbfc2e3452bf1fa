#include "scanners/ScanBatches.h"

#include <gmock/gmock.h>

#include <vector>

#include "engine/notification/Notifications.h"
#include "support/HeardNotifications.h"

namespace brimvault::tests {

using engine::FFItem;
using engine::ItemArray;
using engine::Section;
using scanners::ScanBatches;

namespace {

const auto words = engine::vocabulary(Section::trash);

// What was posted in one scan: the sizes of the batches, and the percents that came with them.
struct Reported {
    std::vector<qsizetype> batches;
    std::vector<qint64> percents;
    ItemArray fromProgress;
    ItemArray final;
    int wholes = 0;  // batches posted as everything so far
};

Reported scan(int found, qint64 expected) {
    const HeardNotifications heard = {words.scanProgress, words.scanFinished};
    ScanBatches batches(Section::trash, expected);
    for (int number = 0; number < found; ++number) {
        batches.step();
        batches.add(FFItem::initWithName(std::to_string(number), 1));
    }
    batches.sendOperationCompleted();

    Reported reported;
    for (const auto& notification : heard.all()) {
        const auto whole = engine::getArrayPropfromNotification<ItemArray>(notification, words.arrayKey);
        if (notification.name == words.scanFinished) {
            reported.final = *whole;
            continue;
        }
        const auto delta = engine::getArrayPropfromNotification<ItemArray>(notification, words.deltaKey);
        EXPECT_NE(whole.has_value(), delta.has_value());
        reported.wholes += whole ? 1 : 0;
        reported.fromProgress += whole ? *whole : *delta;
        reported.batches.push_back(whole ? whole->size() : delta->size());
        reported.percents.push_back(*getNumberPropfromNotification(notification, engine::key::progressPercent));
        EXPECT_EQ(getNumberPropfromNotification(notification, engine::key::totalCount), expected);
    }
    EXPECT_EQ(reported.final.size(), found);
    EXPECT_EQ(reported.fromProgress, reported.final.first(reported.fromProgress.size()));
    return reported;
}

}  // namespace

TEST(ScanBatches, PostAtEveryItemButTheFirstOfAFewAndLeaveTheLastToTheEnd) {
    const auto reported = scan(10, 10);
    EXPECT_EQ(reported.batches, std::vector<qsizetype>(9, 1));
    EXPECT_THAT(reported.percents, testing::ElementsAre(20, 30, 40, 50, 60, 70, 80, 90, 100));
    EXPECT_EQ(reported.wholes, 1);
}

TEST(ScanBatches, PostAtEverySecondItemOfAHundredAndFifty) {
    const auto reported = scan(150, 150);
    ASSERT_EQ(reported.batches.size(), 75U);
    EXPECT_EQ(reported.batches.front(), 1);  // the item that closes a batch goes into the next one
    EXPECT_EQ(std::vector<qsizetype>(reported.batches.begin() + 1, reported.batches.end()),
              std::vector<qsizetype>(74, 2));
    EXPECT_EQ(reported.percents.front(), 1);
    EXPECT_EQ(reported.percents.back(), 100);
}

TEST(ScanBatches, PostAboutSeventyFiveTimesHoweverManyItems) {
    const auto reported = scan(10'000, 10'000);
    EXPECT_THAT(reported.batches.size(), testing::AllOf(testing::Ge(70U), testing::Le(75U)));
    EXPECT_EQ(reported.wholes, 1);
}

TEST(ScanBatches, GoAboveAHundredPerCentWhenMoreIsFoundThanExpected) {
    EXPECT_THAT(scan(4, 2).percents, testing::ElementsAre(100, 150, 200));
    EXPECT_THAT(scan(3, 2).percents, testing::ElementsAre(100, 150));
}

TEST(ScanBatches, GivePercentZeroWhenNothingWasExpected) {
    EXPECT_THAT(scan(3, 0).percents, testing::ElementsAre(0, 0));
}

TEST(ScanBatches, PostOnlyTheEndForNothingOrOneItem) {
    EXPECT_TRUE(scan(0, 0).batches.empty());
    EXPECT_TRUE(scan(0, 5).batches.empty());
    EXPECT_TRUE(scan(1, 1).batches.empty());
}

TEST(ScanBatches, TruncateThePercent) { EXPECT_THAT(scan(3, 3).percents, testing::ElementsAre(66, 100)); }

}  // namespace brimvault::tests
