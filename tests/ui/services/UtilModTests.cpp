#include <thread>

#include "support/WindowFixture.h"

namespace brimvault::tests {

TEST(UtilModTest, AnItemWithoutAPathLiesInTheFolderOfItsSectionWhichTheMainThreadNeverLooksUp) {
    const TemporaryFolder folder;
    const SampleHome home{folder / "home"};
    std::atomic<int> lookedUpHere = 0;
    const auto homeFolder = [&, mainThread = std::this_thread::get_id()] {
        lookedUpHere += std::this_thread::get_id() == mainThread ? 1 : 0;
        return std::optional(home.path());
    };
    const platform::SubstituteSystem system{
        {homeFolder, [] { return std::string("trial"); }, [](const char*) { return std::string(); }}};
    ToldAlerts alerts;
    ToldFileBrowser fileBrowser;
    ToldWorkspace workspace;
    ui::UtilMod util(alerts, fileBrowser, workspace);
    EXPECT_EQ(&ui::UtilMod::sharedUtil(), &util);

    const auto item = engine::FFItem::initWithName("found", 1);
    util.lookUpFolders();
    ASSERT_TRUE(Guide::waitFor([&] { return !util.getFullCachePathToItem(*item).empty(); }));
    EXPECT_EQ(util.getFullCachePathToItem(*item), home.caches() / "found");
    EXPECT_EQ(util.getFullDownloadPathToItem(*item), home.downloads() / "found");
    EXPECT_EQ(util.getFullTrashPathToItem(*item), home.path() / ".Trash" / "found");
    EXPECT_EQ(lookedUpHere, 0);
}

}  // namespace brimvault::tests
