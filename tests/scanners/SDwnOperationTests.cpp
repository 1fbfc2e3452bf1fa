#include "scanners/SDwnOperation.h"

#include <gmock/gmock.h>

#include "support/FixtureTrees.h"
#include "support/ScanRun.h"
#include "support/SubstituteHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using scanners::SDwnOperation;
namespace fs = std::filesystem;

namespace {

class DownloadsScan : public testing::Test {
protected:
    DownloadsScan() { fs::create_directories(home_); }

    TemporaryFolder folder_;
    const fs::path home_ = folder_ / "home";
    const fs::path downloads_ = home_ / "Downloads";
    const SubstituteHome system_{home_};
};

}  // namespace

TEST_F(DownloadsScan, GivesUntickedItemsThatAreAddressedByTheirNames) {
    writeFile(downloads_ / "folder/.inner/file", "12345");
    writeFile(downloads_ / "image.iso.part", "123");
    writeFile(downloads_ / ".hidden", "1");
    std::map<fs::path, quint64> found;
    quint64 selected = 0;
    for (const auto& item : runScan(std::make_shared<SDwnOperation>()).items) {
        found[item->pfname()] = item->pfSize();
        selected += item->getSpace2SaveBySel();
        EXPECT_TRUE(item->pfpath().empty());
        EXPECT_TRUE(item->ppbDeletable());
        EXPECT_EQ(item->getDisplayIcon().kind,
                  item->pfname() == "folder" ? files::NodeKind::directory : files::NodeKind::regular);
    }
    EXPECT_EQ(found, (std::map<fs::path, quint64>{{"folder", 5}, {"image.iso.part", 3}}));
    EXPECT_EQ(selected, 0U);
}

TEST_F(DownloadsScan, ListsTheFolderThatTheUserHasNamedAndNoneWhereThereIsNone) {
    writeFile(downloads_ / "file", "12345");
    writeFile(home_ / "Loads/other", "12345");
    writeFile(home_ / ".config/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"$HOME/Loads\"\n");
    const auto items = runScan(std::make_shared<SDwnOperation>()).items;
    ASSERT_EQ(items.size(), 1);
    EXPECT_EQ(items[0]->pfname(), "other");
    writeFile(home_ / ".config/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"$HOME/\"\n");
    EXPECT_TRUE(runScan(std::make_shared<SDwnOperation>()).items.isEmpty());
    writeFile(home_ / ".config/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"$HOME/missing\"\n");
    EXPECT_TRUE(runScan(std::make_shared<SDwnOperation>()).items.isEmpty());
}

TEST_F(DownloadsScan, StopsWhenItIsCancelledAndReportsWhatItHas) {
    makeWide(downloads_, 50);
    const auto operation = std::make_shared<SDwnOperation>();
    const auto result = runScan(operation, [&] { operation->cancel(); });
    EXPECT_EQ(result.items.size(), 1);
    EXPECT_EQ(result.percents, std::vector<qint64>{4});
}

TEST_F(DownloadsScan, ReportsWhatItHasWhenItFails) {
    makeWide(downloads_, 50);
    const auto result = runScan(std::make_shared<SDwnOperation>(), [] { throw 1; });
    EXPECT_EQ(result.items.size(), 1);
}

}  // namespace brimvault::tests
