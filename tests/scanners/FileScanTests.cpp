#include <gmock/gmock.h>

#include <atomic>
#include <future>
#include <thread>

#include "scanners/ContainersFolderScannerManager.h"
#include "scanners/ScanBatches.h"
#include "scanners/SystemPathsGenerator.h"
#include "support/FileSections.h"
#include "support/FixtureTrees.h"
#include "support/SectionWork.h"
#include "support/SubstituteHome.h"
#include "trial/TemporaryFolder.h"

// What homes made at random (RandomHomesTests) do not show of a scan: its order, its progress, and what becomes of it
// when it is cancelled or fails.

namespace brimvault::tests {

using namespace trial;

using engine::ItemArray;
using engine::Section;
using testing::ElementsAre;
namespace fs = std::filesystem;

namespace {

class FileScans : public testing::Test {
protected:
    FileScans() { fs::create_directories(home_); }

    static std::vector<std::string> namesIn(Section section) {
        std::vector<std::string> names;
        for (const auto& item : scanSection(section).items) {
            names.push_back(item->pfname());
        }
        return names;
    }

    TemporaryFolder folder_;
    const fs::path home_ = folder_ / "home";
    const fs::path root_ = folder_ / "root";
    const fs::path caches_ = home_ / "Library/Caches";
    const fs::path logs_ = home_ / "Library/Logs";
    const fs::path reports_ = home_ / "Library/Application Support/CrashReporter";
    const fs::path containers_ = home_ / "Library/Containers";
    const SubstituteHome system_{home_, {{"BRIMVAULT_TRIAL_ROOT", root_}}};
};

// What a scan posts of its progress: the sizes of the batches, and the percents.
std::pair<std::vector<qsizetype>, std::vector<qint64>> scan(int found, qint64 expected) {
    const auto words = engine::vocabulary(Section::trash);
    const HeardNotifications progress = {words.scanProgress};
    const HeardNotifications finished = {words.scanFinished};
    scanners::ScanBatches batches(Section::trash, expected);
    for (int number = 0; number < found; ++number) {
        batches.step();
        batches.add(engine::FFItem::initWithName(std::to_string(number), 1));
    }
    batches.sendOperationCompleted();
    std::vector<qsizetype> sizes;
    std::vector<qint64> percents;
    ItemArray posted;
    for (const auto& post : progress.all()) {
        // The first batch replaces the results of an earlier scan, the others are added.
        const auto& key = posted.isEmpty() ? words.arrayKey : words.deltaKey;
        const auto batch = engine::getArrayPropfromNotification<ItemArray>(post, key).value_or(ItemArray());
        posted += batch;
        sizes.push_back(batch.size());
        percents.push_back(*getNumberPropfromNotification(post, engine::key::progressPercent));
        EXPECT_EQ(getNumberPropfromNotification(post, engine::key::totalCount), expected);
        EXPECT_EQ(post.userInfo.size(), 3);
    }
    const auto all =
        engine::getArrayPropfromNotification<ItemArray>(finished.last(words.scanFinished), words.arrayKey).value();
    EXPECT_EQ(all.size(), found);
    EXPECT_EQ(posted, all.first(posted.size()));
    return {sizes, percents};
}

}  // namespace

TEST_F(FileScans, ListContainersLastUnderTheirOwnNames) {
    writeFile(containers_ / "com.a.app/Data/Library/Caches/file", "12345");
    writeFile(containers_ / "com.a.app/Data/Library/Logs/inner.log", "12345");
    writeFile(caches_ / "zz", "12345");
    writeFile(root_ / "Library/Logs/system.log", "1");
    writeFile(reports_ / "editor.crash", "12");
    writeFile(logs_ / "folder/user.log", "123");
    EXPECT_THAT(namesIn(Section::caches), ElementsAre("zz", "com.a.app"));
    EXPECT_THAT(namesIn(Section::logs), ElementsAre("folder", "editor.crash", "system.log", "inner.log", "com.a.app"));
    EXPECT_FALSE(scanners::SLogsOperation().urlOfSource(4) || scanners::SLogsOperation().urlOfSource(-1));
}

TEST_F(FileScans, FindNothingInFoldersThatAreMissingOrFiles) {
    for (const auto section : {Section::caches, Section::downloads, Section::logs, Section::trash}) {
        const auto found = scanSection(section);
        EXPECT_TRUE(found.items.isEmpty());
        EXPECT_EQ(found.expectedCount, 0);
    }
    for (const auto& file : {caches_, logs_, home_ / "Downloads", home_ / ".Trash"}) {
        writeFile(file, "no folder");
    }
    fs::create_directories(containers_ / "com.a.bare");
    EXPECT_THAT(namesIn(Section::caches), ElementsAre("com.a.bare"));
    EXPECT_THAT(namesIn(Section::logs), ElementsAre("com.a.bare"));
    EXPECT_THAT(namesIn(Section::downloads), ElementsAre());
    EXPECT_THAT(namesIn(Section::trash), ElementsAre());
}

TEST_F(FileScans, ListAFolderOnceToWhichTwoRootsLead) {
    writeFile(root_ / "Library/Logs/once", "12345");
    fs::create_directory(home_ / "Library");
    fs::create_directory_symlink(root_ / "Library/Logs", logs_);
    EXPECT_THAT(namesIn(Section::logs), ElementsAre("once"));
}

TEST_F(FileScans, ListTheDownloadsWhereTheUserHasThemUnlessThatIsTheUsersOwnFolder) {
    writeFile(home_ / "Downloads/file", "12345");
    writeFile(home_ / "Loads/other", "12345");
    writeFile(home_ / "Documents/inner/file", "12345");
    const std::pair<const char*, std::vector<std::string>> examples[] = {{"$HOME/Loads", {"other"}},
                                                                         {"$HOME/", {}},
                                                                         {"$HOME", {}},
                                                                         {"$HOME/missing", {}},
                                                                         {"$HOME/Documents", {}},
                                                                         {"$HOME/Documents/..", {}},
                                                                         {"$HOME/Documents/inner", {"file"}}};
    for (const auto& [named, expected] : examples) {
        writeFile(home_ / ".config/user-dirs.dirs", std::string("XDG_DOWNLOAD_DIR=\"") + named + "\"\n");
        EXPECT_EQ(namesIn(Section::downloads), expected) << named;
    }
}

TEST_F(FileScans, ReportWhatTheyHaveWhenTheyAreCancelledOrFail) {
    const auto trash = home_ / ".local/share/Trash/files";
    for (const auto& folder : {caches_, logs_, reports_, home_ / "Downloads", trash}) {
        makeWide(folder, 20);
    }
    writeFile(containers_ / "com.a.app/Data/Library/Caches/file", "12345");
    writeFile(containers_ / "com.a.app/Data/Library/Logs/file", "12345");
    for (const auto section : {Section::caches, Section::downloads, Section::logs, Section::trash}) {
        SCOPED_TRACE(static_cast<int>(section));
        int posts = 0;
        const auto cancelTheThird = [&](engine::SBaseOperation& operation) {
            if (++posts == 3) {
                operation.cancel();
            }
        };
        const auto items = scanSection(section, cancelTheThird).items;
        // The fourth item was begun, and not finished. Logs lists its containers all the same.
        ASSERT_EQ(items.size(), section == Section::logs ? 4 : 3);
        EXPECT_EQ(posts, 3);
        EXPECT_EQ(items[2]->pfSize(), 0U);
        EXPECT_EQ(items.last()->pfSize(), section == Section::logs ? 5U : 0U);
    }
    EXPECT_EQ(scanSection(Section::downloads, [](auto&) { throw 1; }).items.size(), 1);
}

TEST_F(FileScans, OfLogsBeginThePercentAgainWithEachSourceAndSayNoMoreThanAHundred) {
    makeWide(logs_, 5);
    makeWide(reports_, 5);
    EXPECT_THAT(scanSection(Section::logs).percents, ElementsAre(20, 30, 40, 50, 20, 30, 40, 50));
    const auto grown = scanSection(Section::logs, [&](auto&) { makeWide(reports_, 50); });
    EXPECT_EQ(grown.expectedCount, 10);
    EXPECT_EQ(grown.percents.size(), 4U + 49U);
    EXPECT_EQ(grown.percents.back(), 100);
}

TEST_F(FileScans, OfLogsMoveThePercentOnWithWhatTheyPassOver) {
    for (int number = 0; number < 10; ++number) {
        writeFile(logs_ / ("user.log." + std::to_string(number)), "12345");
        writeFile(logs_ / ("talagent.log." + std::to_string(number)), "12345");
    }
    std::vector<qint64> expected;
    qint64 place = 0;
    bool hasBatch = false;
    for (const auto& entry : fs::directory_iterator(logs_)) {
        ++place;
        if (hasBatch) {
            expected.push_back(place * 5);  // of 20
        }
        hasBatch = entry.path().filename().native().starts_with("user");
    }
    const auto found = scanSection(Section::logs);
    EXPECT_EQ(found.items.size(), 10);
    EXPECT_EQ(found.percents, expected);
}

TEST_F(FileScans, OfTheTrashMoveThePercentOnWithWhatIsHidden) {
    for (const char* name : {".a", ".b", "c", "d", "e"}) {  // in the order of their names
        writeFile(home_ / ".Trash" / name, "12345");
    }
    EXPECT_THAT(scanSection(Section::trash).percents, ElementsAre(80, 100));
}

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
        const std::vector<qsizetype> batches(percents.size(), 1);
        EXPECT_EQ(scan(found, expected), std::pair(batches, percents)) << found << " of " << expected;
    }
}

TEST(ScanBatches, PostAboutSeventyFiveTimesHoweverManyItems) {
    const auto [batches, percents] = scan(150, 150);
    std::vector<qsizetype> expected(75, 2);
    expected.front() = 1;  // the item that closes a batch goes into the next one
    EXPECT_EQ(batches, expected);
    EXPECT_EQ(percents.front(), 1);
    EXPECT_EQ(percents.back(), 100);
    EXPECT_THAT(scan(10'000, 10'000).first.size(), testing::AllOf(testing::Ge(70U), testing::Le(75U)));
}

TEST(ContainersFolderScannerManager, ListsOnceForAllWhoWaitAndAfreshAfterAResetWhileAListingHangs) {
    const TemporaryFolder folder;
    fs::create_directories(folder / "list/container");
    Hang hang;
    std::promise<void> begun;
    std::atomic<int> listings = 0;
    scanners::ContainersFolderScannerManager manager([&] {
        if (++listings == 1) {
            begun.set_value();
            hang.wait();
        }
        return std::make_unique<scanners::ContainersFolderScanner>(folder / "list");
    });
    auto first = std::async(std::launch::async, [&] { return manager.caches().size(); });
    begun.get_future().wait();
    auto second = std::async(std::launch::async, [&] { return manager.logs().size(); });
    manager.reset();
    EXPECT_EQ(manager.caches().size(), 1U) << "nobody waits for what hangs";
    EXPECT_EQ(manager.logs().size(), 1U);
    EXPECT_EQ(listings, 2);
    hang.letOn();
    EXPECT_EQ(first.get(), 1U);
    EXPECT_EQ(second.get(), 1U);
    EXPECT_EQ(listings, 2) << "who asked before the reset has the list of then, or the new one";
}

TEST(ContainersFolderScannerManager, GivesWholeListsToThreadsThatAskAtOnce) {
    const TemporaryFolder folder;
    for (int number = 0; number < 50; ++number) {
        fs::create_directories(folder / "list" / std::to_string(number));
    }
    scanners::ContainersFolderScannerManager manager(folder / "list");
    const auto ask = [&] {
        for (int round = 0; round < 100; ++round) {
            EXPECT_EQ(manager.caches().size(), 50U);
            manager.reset();
        }
    };
    const std::jthread one(ask);
    const std::jthread other(ask);
}

TEST(SystemPathsGenerator, PutsTheHomeFolderOfItsMakingInThePlaceOfItsPrefixOnly) {
    const TemporaryFolder folder;
    const SubstituteHome home(folder.path());
    const scanners::SystemPathsGenerator paths;
    const SubstituteHome root("/");
    EXPECT_EQ(scanners::SystemPathsGenerator().urlForPath("~/Library").native(), "/Library");
    EXPECT_EQ(paths.urlForPath("~/Library/Containers"), folder / "Library/Containers");
    for (const char* other : {"~", "~anna/Library", "/a/~/b", "relative"}) {
        EXPECT_EQ(paths.urlForPath(other), other);
    }
}

}  // namespace brimvault::tests
