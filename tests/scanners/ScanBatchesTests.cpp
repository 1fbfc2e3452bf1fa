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

// What a scan posts of its progress: the sizes of the batches, and the percents.
struct Reported {
    std::vector<qsizetype> batches;
    std::vector<qint64> percents;
};

Reported scan(int found, qint64 expected) {
    const HeardNotifications progress = {words.scanProgress};
    const HeardNotifications finished = {words.scanFinished};
    ScanBatches batches(Section::trash, expected);
    for (int number = 0; number < found; ++number) {
        batches.step();
        batches.add(FFItem::initWithName(std::to_string(number), 1));
    }
    batches.sendOperationCompleted();
    Reported reported;
    ItemArray posted;
    for (const auto& post : progress.all()) {
        // The first batch replaces the results of an earlier scan, the others are added.
        const auto& key = posted.isEmpty() ? words.arrayKey : words.deltaKey;
        const auto batch = engine::getArrayPropfromNotification<ItemArray>(post, key).value_or(ItemArray());
        posted += batch;
        reported.batches.push_back(batch.size());
        reported.percents.push_back(*getNumberPropfromNotification(post, engine::key::progressPercent));
        EXPECT_EQ(getNumberPropfromNotification(post, engine::key::totalCount), expected);
        EXPECT_EQ(post.userInfo.size(), 3);
    }
    const auto all =
        engine::getArrayPropfromNotification<ItemArray>(finished.last(words.scanFinished), words.arrayKey).value();
    EXPECT_EQ(all.size(), found);
    EXPECT_EQ(posted, all.first(posted.size()));
    return reported;
}

}  // namespace

TEST(ScanBatches, TellThePercentOfWhatWasExpectedWithEveryItemButTheFirstOfAFew) {
    const std::tuple<int, qint64, std::vector<qint64>> examples[] = {
        {10, 10, {20, 30, 40, 50, 60, 70, 80, 90, 100}},
        {3, 3, {66, 100}},  // truncated
        {4, 2, {100, 150, 200}},
        {3, 2, {100, 150}},
        {3, 0, {0, 0}},
        {0, 0, {}},
        {0, 5, {}},
        {1, 1, {}},
    };
    for (const auto& [found, expected, percents] : examples) {
        const auto reported = scan(found, expected);
        EXPECT_EQ(reported.percents, percents) << found << " of " << expected;
        EXPECT_EQ(reported.batches, std::vector<qsizetype>(percents.size(), 1));
    }
}

TEST(ScanBatches, PostAboutSeventyFiveTimesHoweverManyItems) {
    auto reported = scan(150, 150);
    std::vector<qsizetype> batches(75, 2);
    batches.front() = 1;  // the item that closes a batch goes into the next one
    EXPECT_EQ(reported.batches, batches);
    EXPECT_EQ(reported.percents.front(), 1);
    EXPECT_EQ(reported.percents.back(), 100);
    reported = scan(10'000, 10'000);
    EXPECT_THAT(reported.batches.size(), testing::AllOf(testing::Ge(70U), testing::Le(75U)));
}

}  // namespace brimvault::tests
