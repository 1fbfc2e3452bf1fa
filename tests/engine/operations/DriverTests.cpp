// The scan driver, the clean driver and the façade over operations that the tests supply.

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <semaphore>
#include <stdexcept>

#include "engine/operations/CPerformer.h"
#include "support/EventLoop.h"
#include "support/HeardNotifications.h"
#include "support/SectionWork.h"
#include "support/TextPrinting.h"

namespace brimvault::tests {

using engine::AppItemData;
using engine::ApplicationArray;
using engine::CleanTable;
using engine::CPerformer;
using engine::FCutter;
using engine::FFItem;
using engine::FScaner;
using engine::ItemArray;
using engine::ScanTable;
using engine::Section;

namespace {

const QString scanFinished = engine::notification::scanFinished;
const QString cleanFinished = engine::notification::cleanFinished;

QString finished(Section section) { return engine::vocabulary(section).scanFinished; }
QString cleaned(Section section) { return engine::vocabulary(section).cleanFinished; }

ItemArray oneItem(const char* name = "item") { return {FFItem::initWithName(name, 1)}; }

ScanTable scansDoing(const SuppliedScan::Work& work) {
    ScanTable table;
    for (const Section section : engine::allSections) {
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
                const auto words = engine::vocabulary(section);
                engine::NotificationCenter::defaultCenter().post(words.cleanFinished, {{words.arrayKey, items}});
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

}  // namespace

TEST(FScaner, PostsItsEndAtOnceForNoSectionAndForgetsWhatScansShare) {
    int resets = 0;
    ScanTable table = scansDoing([](SuppliedScan&) { return ItemArray(); });
    table.resetShared = [&] { ++resets; };
    const HeardNotifications heard = {scanFinished, finished(Section::caches)};
    FScaner scanner(table);
    scanner.Scan(false, false, false, false, false);
    ASSERT_TRUE(runUntil([&] { return heard.has(scanFinished); }));
    EXPECT_EQ(heard.names(), QStringList{scanFinished});
    EXPECT_TRUE(heard.last(scanFinished).userInfo.isEmpty());
    EXPECT_EQ(resets, 1);
}

TEST(FScaner, RunsTheChosenSectionsSideBySideAndPostsItsEndAfterAll) {
    std::counting_semaphore<> met(0);
    std::atomic<int> arrived = 0;
    std::atomic<bool> together = true;
    FScaner scanner(scansDoing([&](SuppliedScan&) {
        if (++arrived == 5) {
            met.release(5);
        }
        together = met.try_acquire_for(std::chrono::seconds(30)) && together;
        return ItemArray();
    }));
    const HeardNotifications heard = {scanFinished,
                                      finished(Section::languageResources),
                                      finished(Section::downloads),
                                      finished(Section::caches),
                                      finished(Section::trash),
                                      finished(Section::logs)};
    scanner.Scan(true, true, true, true, true);
    ASSERT_TRUE(runUntil([&] { return heard.has(scanFinished); }));
    EXPECT_TRUE(together);
    EXPECT_EQ(heard.names().size(), 6);
    EXPECT_EQ(heard.names().last(), scanFinished);
    EXPECT_FALSE(scanner.isScanning());
}

TEST(FScaner, LeavesAnotherSectionsScanRunning) {
    std::binary_semaphore go(0);
    std::atomic<bool> wasCancelled = false;
    FScaner scanner(scansDoing([&](SuppliedScan& own) {
        if (own.section() == Section::caches) {
            go.acquire();
            wasCancelled = own.isCancelled();
        }
        return ItemArray();
    }));
    const HeardNotifications heard = {scanFinished, finished(Section::trash), finished(Section::caches)};
    scanner.Scan(false, false, true, false, false);
    scanner.Scan(false, false, false, true, false);
    ASSERT_TRUE(runUntil([&] { return heard.has(scanFinished); }));
    EXPECT_EQ(heard.names(), (QStringList{finished(Section::trash), scanFinished}));
    EXPECT_TRUE(scanner.isScanning());
    go.release();
    ASSERT_TRUE(runUntil([&] { return heard.names().size() == 4; }));
    EXPECT_FALSE(wasCancelled);
}

TEST(FScaner, CancelsAndAwaitsTheEarlierScanOfASection) {
    std::atomic<int> running = 0;
    std::atomic<int> most = 0;
    std::atomic<int> begun = 0;
    FScaner scanner(scansDoing([&](SuppliedScan& own) {
        ++begun;
        most = std::max<int>(most, ++running);
        awaitCancel(own);
        --running;
        return ItemArray();
    }));
    const HeardNotifications heard = {scanFinished, finished(Section::caches)};
    for (int round = 1; round <= 3; ++round) {
        scanner.Scan(false, false, true, false, false);
        ASSERT_TRUE(runUntil([&] { return begun == round; }));
    }
    scanner.cancelScanAll();
    ASSERT_TRUE(runUntil([&] { return heard.names().count(scanFinished) == 3; }));
    EXPECT_EQ(most, 1);
    EXPECT_EQ(heard.names().count(finished(Section::caches)), 3);
}

TEST(FScaner, DoesNotScanASectionItHasNoOperationFor) {
    const HeardNotifications heard = {scanFinished, finished(Section::logs)};
    FScaner scanner({});
    scanner.Scan(true, true, true, true, true);
    ASSERT_TRUE(runUntil([&] { return heard.has(scanFinished); }));
    EXPECT_EQ(heard.names().size(), 1);
}

TEST(FScaner, PostsTheEndOfAScanThatFails) {
    const HeardNotifications heard = {scanFinished, finished(Section::caches), finished(Section::languageResources)};
    engine::DataMan model;
    FScaner scanner(scansDoing([](SuppliedScan& own) -> ItemArray {
        const auto words = engine::vocabulary(own.section());
        engine::NotificationCenter::defaultCenter().post(words.scanProgress, {{engine::key::progressPercent, 50LL}});
        if (own.section() == Section::caches) {
            throw std::runtime_error("a failure");
        }
        throw 1;
    }));
    scanner.Scan(true, false, true, false, false);
    ASSERT_TRUE(runUntil([&] { return heard.has(scanFinished); }));
    runPending();
    EXPECT_EQ(heard.names().size(), 3);
    EXPECT_FALSE(model.progressPercent(Section::caches));
    EXPECT_FALSE(model.progressPercent(Section::languageResources));
}

TEST(FCutter, CleansOneSectionAfterAnotherInTheOrderOfSections) {
    std::atomic<int> running = 0;
    std::atomic<int> most = 0;
    FCutter cutter(cleansDoing([&](SuppliedWork&) {
        most = std::max<int>(most, ++running);
        std::this_thread::yield();
        --running;
    }));
    const HeardNotifications heard = {cleaned(Section::languageResources),
                                      cleaned(Section::downloads),
                                      cleaned(Section::caches),
                                      cleaned(Section::trash),
                                      cleaned(Section::logs),
                                      cleanFinished};
    cutter.Clean(ApplicationArray{AppItemData::initWithName("/a.app")}, oneItem(), oneItem(), oneItem(), oneItem());
    ASSERT_TRUE(runUntil([&] { return heard.has(cleanFinished); }));
    EXPECT_EQ(heard.names(),
              (QStringList{cleaned(Section::languageResources), cleaned(Section::downloads), cleaned(Section::caches),
                           cleaned(Section::trash), cleaned(Section::logs), cleanFinished}));
    EXPECT_EQ(most, 1);
}

TEST(FCutter, PostsNothingButItsEndForNoOrEmptyArrays) {
    FCutter cutter(cleansDoing([](SuppliedWork&) { ADD_FAILURE() << "an operation was made"; }));
    const HeardNotifications heard = {cleanFinished, cleaned(Section::caches)};
    cutter.Clean(std::nullopt, std::nullopt, std::nullopt, std::nullopt, std::nullopt);
    cutter.Clean(ApplicationArray(), ItemArray(), ItemArray(), ItemArray(), ItemArray());
    ASSERT_TRUE(runUntil([&] { return heard.names().size() == 2; }));
    EXPECT_EQ(heard.names(), (QStringList{cleanFinished, cleanFinished}));
}

TEST(FCutter, CancelsOneSectionAndGoesOnWithTheNext) {
    std::binary_semaphore begun(0);
    FCutter cutter(cleansDoing([&](SuppliedWork& own) {
        if (own.section() == Section::caches) {
            begun.release();
            awaitCancel(own);
        }
        EXPECT_EQ(own.isCancelled(), own.section() == Section::caches);
    }));
    const HeardNotifications heard = {cleanFinished, cleaned(Section::caches), cleaned(Section::logs)};
    cutter.Clean(std::nullopt, std::nullopt, oneItem(), std::nullopt, oneItem());
    begun.acquire();
    cutter.cancelCleanCaches();
    EXPECT_TRUE(heard.has(cleaned(Section::caches)));
    ASSERT_TRUE(runUntil([&] { return heard.has(cleanFinished); }));
    EXPECT_EQ(heard.names(), (QStringList{cleaned(Section::caches), cleaned(Section::logs), cleanFinished}));
}

TEST(CPerformer, EmptiesTheChosenSectionsOnly) {
    CPerformer performer(scansDoing([](SuppliedScan&) { return oneItem("new"); }), {});
    performer.pdata().setCachesArray(oneItem("old"));
    performer.pdata().setTrashArray(oneItem("old"));
    const HeardNotifications heard = {scanFinished};
    performer.Scan(false, false, true, false, false);
    EXPECT_EQ(performer.pdata().getCachesCount(), 0);
    ASSERT_TRUE(runUntil([&] { return heard.has(scanFinished) && performer.pdata().getCachesCount() == 1; }));
    EXPECT_EQ(performer.pdata().getCacheItem(0)->pfname(), "new");
    EXPECT_EQ(performer.pdata().getTrashItem(0)->pfname(), "old");
}

TEST(CPerformer, ReplacesARunningScanWhoseResultsComeInUntilTheNewOnesDo) {
    std::atomic<int> begun = 0;
    CPerformer performer(scansDoing([&](SuppliedScan& own) {
                             const bool first = ++begun == 1;
                             awaitCancel(own);
                             return oneItem(first ? "first" : "second");
                         }),
                         {});
    performer.Scan(false, false, true, false, false);
    ASSERT_TRUE(runUntil([&] { return begun == 1; }));
    performer.Scan(false, false, true, false, false);
    EXPECT_EQ(performer.pdata().getCachesCount(), 0);
    ASSERT_TRUE(runUntil([&] { return performer.pdata().getCachesCount() == 1; }));
    EXPECT_EQ(performer.pdata().getCacheItem(0)->pfname(), "first");
    ASSERT_TRUE(runUntil([&] { return begun == 2; }));
    performer.cancelScanCaches();
    runPending();
    EXPECT_EQ(performer.pdata().getCacheItem(0)->pfname(), "second");
}

TEST(CPerformer, ScansTheOthersWhileOneHangsAndHearsNothingMoreOfThatOne) {
    const auto hang = std::make_shared<Hang>();
    std::atomic<int> begun = 0;
    CPerformer performer(scansDoing([hang, &begun](SuppliedScan& own) {
                             const auto words = engine::vocabulary(own.section());
                             if (own.section() == Section::caches && ++begun == 1) {
                                 engine::NotificationCenter::defaultCenter().post(
                                     words.scanProgress,
                                     {{words.arrayKey, oneItem("first")}, {engine::key::progressPercent, 45LL}});
                                 hang->wait();
                                 return oneItem("late");
                             }
                             return oneItem("whole");
                         }),
                         {});
    const HeardNotifications heard = {scanFinished};
    performer.Scan(false, false, true, false, true);
    ASSERT_TRUE(runUntil([&] { return performer.pdata().progressPercent(Section::caches) == 45; }));
    performer.cancelScanAll();
    EXPECT_TRUE(performer.pscaner().isScanning(Section::caches));
    performer.Scan(false, false, true, true, false);
    EXPECT_FALSE(performer.pscaner().isScanning(Section::caches));
    EXPECT_TRUE(performer.pscaner().isHanging(Section::caches));
    EXPECT_TRUE(performer.isAnythingLeftBehind());
    EXPECT_FALSE(performer.pdata().progressPercent(Section::caches));
    ASSERT_TRUE(runUntil([&] { return heard.names().size() == 2 && performer.pdata().getTrashCount() == 1; }));
    EXPECT_EQ(begun, 1) << "not scanned again";
    hang->letOn();
    ASSERT_TRUE(runUntil([&] { return !performer.isAnythingLeftBehind(); }));
    runPending();
    ASSERT_EQ(performer.pdata().getCachesCount(), 1);
    EXPECT_EQ(performer.pdata().getCacheItem(0)->pfname(), "first");
    performer.Scan(false, false, true, false, false);
    ASSERT_TRUE(runUntil([&] {
        return performer.pdata().getCachesCount() == 1 && performer.pdata().getCacheItem(0)->pfname() == "whole";
    }));
}

// The end of the scan would bring back what is gone.
TEST(CPerformer, GivesUpAStoppedScanOfWhatItCleans) {
    const auto hang = std::make_shared<Hang>();
    const auto items = oneItem();
    items.first()->setPpbDeletable(true);
    CPerformer performer(
        scansDoing([hang, items](SuppliedScan& own) {
            const auto words = engine::vocabulary(own.section());
            engine::NotificationCenter::defaultCenter().post(words.scanProgress, {{words.arrayKey, items}});
            hang->wait();
            return items;
        }),
        cleansDoing([](SuppliedWork&) {}));
    const HeardNotifications heard = {cleanFinished};
    performer.Scan(false, false, true, true, false);
    ASSERT_TRUE(runUntil([&] { return performer.pdata().getCachesCount() + performer.pdata().getTrashCount() == 2; }));
    performer.cancelScanAll();
    performer.Clean(false, false, true, false, false);
    ASSERT_TRUE(runUntil([&] { return heard.has(cleanFinished) && performer.pdata().getCachesCount() == 0; }));
    EXPECT_TRUE(performer.pscaner().isScanning(Section::trash)) << "of no concern to the clean";
    hang->letOn();
    ASSERT_TRUE(runUntil([&] { return !performer.pscaner().isScanning() && !performer.isAnythingLeftBehind(); }));
    runPending();
    EXPECT_EQ(performer.pdata().getCachesCount(), 0);
}

TEST(CPerformer, CleansWhatTheModelHoldsAndTheModelLosesIt) {
    CPerformer performer({}, cleansDoing([](SuppliedWork&) {}));
    performer.pdata().setDownloadsArray(oneItem());
    performer.pdata().setLogsArray(oneItem());
    const HeardNotifications heard = {cleanFinished};
    performer.Clean(false, true, false, false, false);
    ASSERT_TRUE(runUntil([&] { return heard.has(cleanFinished) && performer.pdata().getDownloadsCount() == 0; }));
    EXPECT_EQ(performer.pdata().getLogsCount(), 1);
}

TEST(CPerformer, SharesItsCleanPropertiesWithTheCleans) {
    QStringList seen;
    CleanTable table;
    table.applications = [&](const ApplicationArray&, const std::shared_ptr<engine::FCleanProps>& properties) {
        return std::make_shared<SuppliedWork>(
            [&seen, properties](SuppliedWork&) { seen = properties->mpstrArrayNeededLangs(); });
    };
    CPerformer performer({}, table);
    performer.setNeedLangs({QStringLiteral("en")});
    performer.pdata().setApplicationsArray(ApplicationArray{AppItemData::initWithName("/a.app")});
    const HeardNotifications heard = {cleanFinished};
    performer.Clean(true, false, false, false, false);
    ASSERT_TRUE(runUntil([&] { return heard.has(cleanFinished); }));
    EXPECT_EQ(seen, QStringList{QStringLiteral("en")});
}

}  // namespace brimvault::tests
