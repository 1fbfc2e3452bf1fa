#include <gmock/gmock.h>

#include "support/FileSections.h"
#include "support/FixtureTrees.h"
#include "support/SubstituteHome.h"
#include "trial/TemporaryFolder.h"

// What homes made at random (RandomHomesTests) do not show of a scan: its order, its progress, and what becomes of it
// when it is cancelled or fails.

namespace brimvault::tests {

using namespace trial;

using engine::ItemArray;
using engine::Section;
using scanners::SLogsOperation;
using testing::ElementsAre;
namespace fs = std::filesystem;

namespace {

class FileScans : public testing::Test {
protected:
    FileScans() { fs::create_directories(home_); }

    // `meanwhile` is called at every progress.
    ItemArray scan(
        Section section,
        const std::function<void(engine::SBaseOperation&)>& meanwhile = [](engine::SBaseOperation&) {}) {
        FileScan scan(section);
        auto result = scan.run(meanwhile);
        expectedCount_ = scan.expectedCount();
        percents_ = std::move(result.percents);
        return result.items;
    }

    std::vector<std::string> namesIn(Section section) {
        std::vector<std::string> names;
        for (const auto& item : scan(section)) {
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
    qint64 expectedCount_ = -1;
    std::vector<qint64> percents_;
};

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
    EXPECT_FALSE(SLogsOperation().urlOfSource(4) || SLogsOperation().urlOfSource(-1));
}

TEST_F(FileScans, FindNothingInFoldersThatAreMissingOrFiles) {
    for (const auto section : {Section::caches, Section::downloads, Section::logs, Section::trash}) {
        EXPECT_TRUE(scan(section).isEmpty());
        EXPECT_EQ(expectedCount_, 0);
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

TEST_F(FileScans, ListTheDownloadsWhereTheUserHasThem) {
    writeFile(home_ / "Downloads/file", "12345");
    writeFile(home_ / "Loads/other", "12345");
    const std::pair<const char*, std::vector<std::string>> examples[] = {
        {"$HOME/Loads", {"other"}}, {"$HOME/", {}}, {"$HOME/missing", {}}};
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
        const auto items = scan(section, [&](engine::SBaseOperation& operation) {
            if (++posts == 3) {
                operation.cancel();
            }
        });
        // The fourth item was begun, and not finished. Logs lists its containers all the same.
        ASSERT_EQ(items.size(), section == Section::logs ? 4 : 3);
        EXPECT_EQ(posts, 3);
        EXPECT_EQ(items[2]->pfSize(), 0U);
        EXPECT_EQ(items.last()->pfSize(), section == Section::logs ? 5U : 0U);
    }
    EXPECT_EQ(scan(Section::downloads, [](auto&) { throw 1; }).size(), 1);
}

TEST_F(FileScans, OfLogsBeginThePercentAgainWithEachSourceAndSayNoMoreThanAHundred) {
    makeWide(logs_, 5);
    makeWide(reports_, 5);
    (void)scan(Section::logs);
    EXPECT_THAT(percents_, ElementsAre(20, 30, 40, 50, 20, 30, 40, 50));
    (void)scan(Section::logs, [&](auto&) { makeWide(reports_, 50); });
    EXPECT_EQ(expectedCount_, 10);
    EXPECT_EQ(percents_.size(), 4U + 49U);
    EXPECT_EQ(percents_.back(), 100);
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
    EXPECT_EQ(scan(Section::logs).size(), 10);
    EXPECT_EQ(percents_, expected);
}

TEST_F(FileScans, OfTheTrashMoveThePercentOnWithWhatIsHidden) {
    for (const char* name : {".a", ".b", "c", "d", "e"}) {  // in the order of their names
        writeFile(home_ / ".local/share/Trash/files" / name, "12345");
    }
    (void)scan(Section::trash);
    EXPECT_THAT(percents_, ElementsAre(80, 100));
}

}  // namespace brimvault::tests
