#include "scanners/SLogsOperation.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "support/FixtureTrees.h"
#include "support/ScanRun.h"
#include "support/SubstituteHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using engine::ItemArray;
using scanners::SLogsOperation;
namespace fs = std::filesystem;

namespace {

class LogsScan : public testing::Test {
protected:
    ItemArray scan(const std::function<void(SLogsOperation&)>& meanwhile = [](SLogsOperation&) {}) {
        const SubstituteHome home(home_, {{"BRIMVAULT_TRIAL_ROOT", root_}});
        scanners::ContainersFolderScannerManager containers(containers_);
        const scanners::PathsGenerator paths;
        const auto operation = std::make_shared<SLogsOperation>(containers, paths);
        auto result = runScan(operation, [&] { meanwhile(*operation); });
        expectedCount_ = operation->nTopLevelItemsCount();
        percents_ = std::move(result.percents);
        return result.items;
    }

    static std::vector<std::string> namesOf(const ItemArray& items) {
        std::vector<std::string> names;
        std::transform(items.begin(), items.end(), std::back_inserter(names),
                       [](const auto& item) { return item->pfname().native(); });
        return names;
    }

    TemporaryFolder folder_;
    const fs::path home_ = folder_ / "home";
    const fs::path root_ = folder_ / "root";
    const fs::path logs_ = home_ / "Library/Logs";
    const fs::path reports_ = home_ / "Library/Application Support/CrashReporter";
    const fs::path containers_ = home_ / "Library/Containers";
    qint64 expectedCount_ = -1;
    std::vector<qint64> percents_;
};

}  // namespace

TEST_F(LogsScan, ListsItsSourcesInTheirOrderAndContainersOnceMoreAsAWhole) {
    writeFile(containers_ / "com.a.app/Data/Library/Logs/inner.log", "12345");
    fs::create_directories(containers_ / "com.b.bare");
    writeFile(root_ / "Library/Logs/system.log", "1");
    writeFile(reports_ / "editor.crash", "12");
    writeFile(logs_ / "folder/user.log", "123");
    const auto items = scan();
    ASSERT_EQ(items.size(), 6);
    EXPECT_EQ(expectedCount_, 6);
    const auto names = namesOf(items);
    EXPECT_EQ(std::vector(names.begin(), names.begin() + 4),
              (std::vector<std::string>{"folder", "editor.crash", "system.log", "inner.log"}));
    EXPECT_THAT(std::vector(names.begin() + 4, names.end()), testing::UnorderedElementsAre("com.a.app", "com.b.bare"));
    for (const auto& item : items) {
        EXPECT_TRUE(item->ppbChecked());
        const bool isBare = item->pfname() == "com.b.bare";
        EXPECT_EQ(item->pfSize() == 0, isBare) << item->pfname();
        if (isBare) {
            EXPECT_EQ(item->pfpath(), containers_ / "com.b.bare/Data/Library/Logs");
        }
    }
}

TEST_F(LogsScan, PassesOverWhatOtherProgramsLookAfterInTheUsersLogsOnlyAndCountsIt) {
    for (const auto& source : {logs_, reports_, root_ / "Library/Logs"}) {
        for (const char* name :
             {"Ubiquity", "CrashReporter", "talagent.log", "talagent.log.12", "talagent.lo", "Ubiquity2", ".hidden"}) {
            writeFile(source / name, "12345");
        }
    }
    const auto items = scan();
    EXPECT_EQ(expectedCount_, 18);
    EXPECT_EQ(items.size(), 14);
    std::vector<std::string> usersOwn;
    for (const auto& item : items) {
        if (item->pfpath().parent_path() == logs_) {
            usersOwn.push_back(item->pfname());
        }
    }
    EXPECT_THAT(usersOwn, testing::UnorderedElementsAre("talagent.lo", "Ubiquity2"));
    EXPECT_FALSE(SLogsOperation::isSourceNeedToSkipFile(2, "Ubiquity"));
    EXPECT_FALSE(SLogsOperation().urlOfSource(4) || SLogsOperation().urlOfSource(-1));
}

TEST_F(LogsScan, BeginsThePercentAgainWithEachSource) {
    makeWide(logs_, 5);
    makeWide(reports_, 5);
    (void)scan();
    const std::vector<qint64> onePass = {20, 30, 40, 50};
    auto expected = onePass;
    expected.insert(expected.end(), onePass.begin(), onePass.end());
    EXPECT_EQ(percents_, expected);
}

TEST_F(LogsScan, MovesThePercentOnWithWhatItPassesOver) {
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
    EXPECT_EQ(scan().size(), 10);
    EXPECT_EQ(percents_, expected);
}

TEST_F(LogsScan, SaysNoMoreThanAHundredPercentWhenMoreIsFoundThanWasCounted) {
    makeWide(logs_, 2);
    (void)scan([&](SLogsOperation&) { makeWide(reports_, 9); });
    EXPECT_EQ(expectedCount_, 2);
    EXPECT_EQ(percents_, (std::vector<qint64>{100, 100, 100, 100, 100, 100, 100, 100, 100}));
}

TEST_F(LogsScan, MeasuresEveryContainerAfterACancelAndNothingElse) {
    makeWide(logs_, 20);
    makeWide(reports_, 20);
    for (int number = 0; number < 5; ++number) {
        writeFile(containers_ / std::to_string(number) / "Data/Library/Logs/file", "12345");
    }
    int posts = 0;
    const auto items = scan([&](SLogsOperation& operation) {
        if (++posts == 3) {
            operation.cancel();
        }
    });
    ASSERT_EQ(items.size(), 3 + 5);  // the fourth of the first source was begun, and not finished
    for (qsizetype at = 3; at < items.size(); ++at) {
        EXPECT_EQ(items[at]->pfSize(), 5U);
        EXPECT_EQ(items[at]->pfpath(), containers_ / items[at]->pfname() / "Data/Library/Logs");
    }
}

TEST_F(LogsScan, FinishesWithNothingInAnEmptyHome) {
    fs::create_directories(home_);
    EXPECT_TRUE(scan().isEmpty());
    EXPECT_EQ(expectedCount_, 0);
    writeFile(logs_, "no folder");
    fs::create_directories(home_ / "Documents/folder");
    fs::create_directory_symlink(home_ / "Documents", containers_);
    EXPECT_TRUE(scan().isEmpty());
}

}  // namespace brimvault::tests
