// The scan driver, the clean driver and the façade over operations that the tests supply.

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <semaphore>
#include <stdexcept>

#include "engine/removal/CPerformer.h"
#include "support/EventLoop.h"
#include "support/HeardNotifications.h"
#include "support/SectionWork.h"
#include "support/TextPrinting.h"

namespace brimvault::tests {

using namespace engine;

namespace {

const QString scanFinished = notification::scanFinished;
const QString cleanFinished = notification::cleanFinished;

QString finished(Section section) { return vocabulary(section).scanFinished; }
QString cleaned(Section section) { return vocabulary(section).cleanFinished; }

ItemArray oneItem(const char* name = "item") { return {FFItem::initWithName(name, 1)}; }

ScanTable scansDoing(const SuppliedScan::Work& work) {
    ScanTable table;
    for (const Section section : allSections) {
        table.operations[section] = [section, work] { return std::make_shared<SuppliedScan>(section, work); };
    }
    return table;
}

// Cleans that post what they were given as gone, after the work.
CleanTable cleansDoing(const SuppliedWork::Work& work) {
    const auto make = [work](Section section, const ItemArray& items) {
        return std::make_shared<SuppliedWork>(
            [section, items, work](SuppliedWork& own) {
                work(own);
                const auto words = vocabulary(section);
                NotificationCenter::defaultCenter().post(words.cleanFinished, {{words.arrayKey, items}});
            },
            section);
    };
    CleanTable table;
    for (const Section section : {Section::downloads, Section::caches, Section::trash, Section::logs}) {
        table.files[section] = [make, section](const ItemArray& items) { return make(section, items); };
    }
    table.applications = [make](const ApplicationArray&, const auto&) { return make(Section::languageResources, {}); };
    return table;
}

void postProgress(Section section, const ItemArray& items, Number percent) {
    const auto words = vocabulary(section);
    NotificationCenter::defaultCenter().post(words.scanProgress,
                                             {{words.arrayKey, items}, {key::progressPercent, percent}});
}

struct Drivers : testing::Test {
    [[nodiscard]] bool heardEnd(const QString& name, int count = 1) const {
        return runUntil([&] { return heard.names().count(name) >= count; });
    }
    const HeardNotifications heard = {scanFinished,
                                      finished(Section::languageResources),
                                      finished(Section::downloads),
                                      finished(Section::caches),
                                      finished(Section::trash),
                                      finished(Section::logs),
                                      cleanFinished,
                                      cleaned(Section::languageResources),
                                      cleaned(Section::downloads),
                                      cleaned(Section::caches),
                                      cleaned(Section::trash),
                                      cleaned(Section::logs)};
};

}  // namespace

TEST_F(Drivers, EndAScanOrACleanOfNothingAtOnceAndForgetWhatScansShare) {
    int resets = 0;
    ScanTable table = scansDoing([](SuppliedScan&) { return ItemArray(); });
    table.resetShared = [&] { ++resets; };
    FScaner scanner(table);
    FScaner without({});
    scanner.Scan(false, false, false, false, false);
    without.Scan(true, true, true, true, true);
    ASSERT_TRUE(heardEnd(scanFinished, 2));
    EXPECT_TRUE(heard.last(scanFinished).userInfo.isEmpty());
    EXPECT_EQ(resets, 1);

    FCutter cutter(cleansDoing([](SuppliedWork&) { ADD_FAILURE() << "an operation was made"; }));
    cutter.Clean(std::nullopt, std::nullopt, std::nullopt, std::nullopt, std::nullopt);
    cutter.Clean(ApplicationArray(), ItemArray(), ItemArray(), ItemArray(), ItemArray());
    ASSERT_TRUE(heardEnd(cleanFinished, 2));
    EXPECT_EQ(heard.names(), (QStringList{scanFinished, scanFinished, cleanFinished, cleanFinished}));
}

TEST_F(Drivers, ScanSideBySideAndPostTheEndOfAllLast) {
    const auto hang = std::make_shared<Hang>();
    std::atomic<int> arrived = 0;
    FScaner scanner(scansDoing([&arrived, hang](SuppliedScan&) {
        ++arrived;
        hang->wait();
        return ItemArray();
    }));
    scanner.Scan(true, true, true, true, true);
    ASSERT_TRUE(runUntil([&] { return arrived == 5; }));
    hang->letOn();
    ASSERT_TRUE(heardEnd(scanFinished));
    EXPECT_EQ(heard.names().size(), 6);
    EXPECT_EQ(heard.names().last(), scanFinished);
    EXPECT_FALSE(scanner.isScanning());
}

TEST_F(Drivers, ReplaceTheScanOfASectionAndLetThoseOfOthersGoOn) {
    std::atomic<int> running = 0;
    std::atomic<int> most = 0;
    std::atomic<int> begun = 0;
    FScaner scanner(scansDoing([&](SuppliedScan& own) {
        if (own.section() == Section::caches) {
            ++begun;
            most = std::max<int>(most, ++running);
            awaitCancel(own);
            --running;
        }
        return ItemArray();
    }));
    QStringList expected = {finished(Section::trash), scanFinished};
    scanner.Scan(false, false, true, false, false);
    ASSERT_TRUE(runUntil([&] { return begun == 1; }));
    scanner.Scan(false, false, false, true, false);
    ASSERT_TRUE(heardEnd(scanFinished));
    EXPECT_EQ(heard.names(), expected);
    EXPECT_EQ(running, 1);
    EXPECT_TRUE(scanner.isScanning());
    for (int round = 2; round <= 3; ++round) {
        scanner.Scan(false, false, true, false, false);
        ASSERT_TRUE(runUntil([&] { return begun == round; }));
        ASSERT_TRUE(heardEnd(scanFinished, round));
        expected += {finished(Section::caches), scanFinished};
        EXPECT_EQ(heard.names(), expected);
    }
    scanner.cancelScanAll();
    ASSERT_TRUE(heardEnd(scanFinished, 4));
    EXPECT_EQ(most, 1);
}

TEST_F(Drivers, PostTheEndOfAScanThatFails) {
    DataMan model;
    FScaner scanner(scansDoing([](SuppliedScan& own) -> ItemArray {
        postProgress(own.section(), {}, 50);
        if (own.section() == Section::caches) {
            throw std::runtime_error("a failure");
        }
        throw 1;
    }));
    scanner.Scan(true, false, true, false, false);
    ASSERT_TRUE(heardEnd(scanFinished));
    runPending();
    EXPECT_EQ(heard.names().size(), 3);
    EXPECT_FALSE(model.progressPercent(Section::caches));
    EXPECT_FALSE(model.progressPercent(Section::languageResources));
}

TEST_F(Drivers, CleanOneSectionAfterAnotherAndCancelOneAlone) {
    std::atomic<int> running = 0;
    std::binary_semaphore begun(0);
    FCutter cutter(cleansDoing([&](SuppliedWork& own) {
        EXPECT_EQ(++running, 1);
        if (own.section() == Section::caches) {
            begun.release();
            awaitCancel(own);
        }
        EXPECT_EQ(own.isCancelled(), own.section() == Section::caches);
        --running;
    }));
    cutter.Clean(ApplicationArray{AppItemData::initWithName("/a.app")}, oneItem(), oneItem(), oneItem(), oneItem());
    begun.acquire();
    cutter.cancelCleanCaches();
    EXPECT_TRUE(heard.has(cleaned(Section::caches)));
    ASSERT_TRUE(heardEnd(cleanFinished));
    EXPECT_EQ(heard.names(),
              (QStringList{cleaned(Section::languageResources), cleaned(Section::downloads), cleaned(Section::caches),
                           cleaned(Section::trash), cleaned(Section::logs), cleanFinished}));
}

TEST_F(Drivers, EmptyTheChosenSectionsOnlyAndTakeTheResultsOfAReplacedScanUntilTheNewOnesCome) {
    std::atomic<int> begun = 0;
    CPerformer performer(scansDoing([&](SuppliedScan& own) {
                             const bool first = ++begun == 1;
                             awaitCancel(own);
                             return oneItem(first ? "first" : "second");
                         }),
                         {});
    auto& model = performer.pdata();
    model.setCachesArray(oneItem("old"));
    model.setTrashArray(oneItem("old"));
    performer.Scan(false, false, true, false, false);
    EXPECT_EQ(model.getCachesCount(), 0);
    ASSERT_TRUE(runUntil([&] { return begun == 1; }));
    performer.Scan(false, false, true, false, false);
    EXPECT_EQ(model.getCachesCount(), 0);
    ASSERT_TRUE(runUntil([&] { return model.getCachesCount() == 1; }));
    EXPECT_EQ(model.getCacheItem(0)->pfname(), "first");
    ASSERT_TRUE(runUntil([&] { return begun == 2; }));
    performer.cancelScanCaches();
    runPending();
    EXPECT_EQ(model.getCacheItem(0)->pfname(), "second");
    EXPECT_EQ(model.getTrashItem(0)->pfname(), "old");
}

TEST_F(Drivers, ScanOtherSectionsWhileOneHangsAndHearNothingMoreOfThatOne) {
    const auto hang = std::make_shared<Hang>();
    std::atomic<int> begun = 0;
    CPerformer performer(scansDoing([hang, &begun](SuppliedScan& own) {
                             if (own.section() == Section::caches && ++begun == 1) {
                                 postProgress(Section::caches, oneItem("first"), 45);
                                 hang->wait();
                                 return oneItem("late");
                             }
                             return oneItem("whole");
                         }),
                         {});
    auto& model = performer.pdata();
    performer.Scan(false, false, true, false, true);
    ASSERT_TRUE(runUntil([&] { return model.progressPercent(Section::caches) == 45; }));
    performer.cancelScanAll();
    EXPECT_TRUE(performer.pscaner().isScanning(Section::caches));
    performer.Scan(false, false, true, true, false);
    EXPECT_FALSE(performer.pscaner().isScanning(Section::caches));
    EXPECT_TRUE(performer.pscaner().isHanging(Section::caches));
    EXPECT_TRUE(performer.isAnythingLeftBehind());
    EXPECT_FALSE(model.progressPercent(Section::caches));
    ASSERT_TRUE(heardEnd(scanFinished, 2) && runUntil([&] { return model.getTrashCount() == 1; }));
    EXPECT_EQ(begun, 1) << "not scanned again";
    hang->letOn();
    ASSERT_TRUE(runUntil([&] { return !performer.isAnythingLeftBehind(); }));
    runPending();
    ASSERT_EQ(model.getCachesCount(), 1);
    EXPECT_EQ(model.getCacheItem(0)->pfname(), "first");
    performer.Scan(false, false, true, false, false);
    ASSERT_TRUE(runUntil([&] { return model.getCachesCount() == 1 && model.getCacheItem(0)->pfname() == "whole"; }));
}

// The end of the scan would bring back what is gone.
TEST_F(Drivers, GiveUpAStoppedScanOfWhatTheyClean) {
    const auto hang = std::make_shared<Hang>();
    const auto items = oneItem();
    CPerformer performer(scansDoing([hang, items](SuppliedScan& own) {
                             postProgress(own.section(), items, 0);
                             hang->wait();
                             return items;
                         }),
                         cleansDoing([](SuppliedWork&) {}));
    auto& model = performer.pdata();
    performer.Scan(false, false, true, true, false);
    ASSERT_TRUE(runUntil([&] { return model.getCachesCount() + model.getTrashCount() == 2; }));
    performer.cancelScanAll();
    performer.Clean(false, false, true, false, false);
    ASSERT_TRUE(heardEnd(cleanFinished) && runUntil([&] { return model.getCachesCount() == 0; }));
    EXPECT_TRUE(performer.pscaner().isScanning(Section::trash)) << "of no concern to the clean";
    hang->letOn();
    ASSERT_TRUE(runUntil([&] { return !performer.pscaner().isScanning() && !performer.isAnythingLeftBehind(); }));
    runPending();
    EXPECT_EQ(model.getCachesCount(), 0);
}

TEST_F(Drivers, CleanWhatTheModelHoldsForTheLanguagesToKeepAndTheModelLosesIt) {
    QStringList seen;
    CleanTable table = cleansDoing([](SuppliedWork&) {});
    table.applications = [&](const ApplicationArray&, const std::shared_ptr<FCleanProps>& properties) {
        return std::make_shared<SuppliedWork>(
            [&seen, properties](SuppliedWork&) { seen = properties->mpstrArrayNeededLangs(); });
    };
    CPerformer performer({}, table);
    auto& model = performer.pdata();
    performer.setNeedLangs({QStringLiteral("en")});
    model.setApplicationsArray(ApplicationArray{AppItemData::initWithName("/a.app")});
    model.setDownloadsArray(oneItem());
    model.setLogsArray(oneItem());
    performer.Clean(true, true, false, false, false);
    ASSERT_TRUE(heardEnd(cleanFinished) && runUntil([&] { return model.getDownloadsCount() == 0; }));
    EXPECT_EQ(seen, QStringList{QStringLiteral("en")});
    EXPECT_EQ(model.getLogsCount(), 1);
}

}  // namespace brimvault::tests
