#include "scanners/SChOperation.h"

#include <gmock/gmock.h>

#include <functional>
#include <map>
#include <random>

#include "support/FixtureTrees.h"
#include "support/ScanRun.h"
#include "support/SubstituteHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using engine::ItemArray;
using scanners::ContainersFolderScannerManager;
using scanners::SChOperation;
namespace fs = std::filesystem;

namespace {

/// Full path to name and size.
using Listing = std::map<fs::path, std::pair<fs::path, std::uint64_t>>;

Listing expectedListing(const fs::path& home) {
    Listing listing;
    for (const auto& entry : fs::directory_iterator(home / "Library/Caches")) {
        const auto name = entry.path().filename();
        if (!name.native().starts_with('.')) {
            listing[entry.path()] = {name, sizeOf(entry.path())};
        }
    }
    if (fs::exists(home / "Library/Containers")) {
        for (const auto& entry : fs::directory_iterator(home / "Library/Containers")) {
            const auto name = entry.path().filename();
            if (!name.native().starts_with('.')) {
                const auto caches = entry.path() / "Data/Library/Caches";
                listing[caches] = {name, sizeOf(caches)};
            }
        }
    }
    return listing;
}

class CachesScan : public testing::Test {
protected:
    // Scans with the operation of its own thread; `meanwhile` is called there at every progress.
    ItemArray scan(const std::function<void(SChOperation&)>& meanwhile = [](SChOperation&) {}) {
        const SubstituteHome home(home_);
        ContainersFolderScannerManager containers(home_ / "Library/Containers");
        const auto operation = std::make_shared<SChOperation>(containers);
        const auto result = runScan(operation, [&] { meanwhile(*operation); });
        expectedCount_ = operation->nTopLevelItemsCount();
        return result.items;
    }

    static Listing listed(const ItemArray& items) {
        Listing listing;
        for (const auto& item : items) {
            EXPECT_TRUE(item->ppbDeletable());
            EXPECT_TRUE(item->ppbChecked());
            EXPECT_TRUE(listing.insert({item->pfpath(), {item->pfname(), item->pfSize()}}).second) << item->pfpath();
        }
        return listing;
    }

    TemporaryFolder folder_;
    const fs::path home_ = folder_ / "home";
    const fs::path caches_ = home_ / "Library/Caches";
    qint64 expectedCount_ = -1;
};

}  // namespace

TEST_F(CachesScan, ListsRandomFoldersByTheRules) {
    std::mt19937 random(4711);
    std::size_t items = 0;
    for (int round = 0; round < 60; ++round) {
        removeTree(home_);
        growRandomly(random, caches_, 3);
        for (int container = 0; container < round % 4; ++container) {
            growRandomly(random, home_ / "Library/Containers" / std::to_string(container) / "Data/Library/Caches", 2);
        }
        const auto expected = expectedListing(home_);
        EXPECT_EQ(listed(scan()), expected) << "in round " << round;
        EXPECT_EQ(expectedCount_, static_cast<qint64>(expected.size()));
        items += expected.size();
    }
    EXPECT_GT(items, 100U);
}

TEST_F(CachesScan, FindsInTheSampleHomeWhatItStates) {
    const SampleHome sample(home_);
    const auto before = fingerprint(home_);
    std::multimap<std::string, std::uint64_t> expected;
    for (const auto& entry : sample.cachesSection()) {
        expected.insert({entry.name, entry.size});
    }
    std::multimap<std::string, std::uint64_t> found;
    for (const auto& item : scan()) {
        found.insert({item->pfname(), item->pfSize()});
    }
    EXPECT_EQ(found, expected);
    EXPECT_EQ(fingerprint(home_), before);
}

TEST_F(CachesScan, ListsContainersAfterTheFolderUnderTheirOwnNames) {
    writeFile(caches_ / "zz", "12345");
    writeFile(home_ / "Library/Containers/com.a.app/Data/Library/Caches/inner/file", "1234567");
    fs::create_directories(home_ / "Library/Containers/com.b.bare");
    const auto items = scan();
    ASSERT_EQ(items.size(), 3);
    EXPECT_EQ(items[0]->pfname(), "zz");
    EXPECT_THAT(listed(items),
                testing::UnorderedElementsAre(testing::Pair(caches_ / "zz", testing::Pair("zz", 5U)),
                                              testing::Pair(home_ / "Library/Containers/com.a.app/Data/Library/Caches",
                                                            testing::Pair("com.a.app", 7U)),
                                              testing::Pair(home_ / "Library/Containers/com.b.bare/Data/Library/Caches",
                                                            testing::Pair("com.b.bare", 0U))));
}

TEST_F(CachesScan, GivesTheContainersAloneWhereThereIsNoFolderToList) {
    fs::create_directories(home_ / "Library/Containers/com.a.app");
    EXPECT_EQ(scan().size(), 1);  // the folder is missing
    writeFile(caches_, "a file");
    EXPECT_EQ(scan().size(), 1);
    fs::remove(caches_);
    writeFile(home_ / "Documents/diary", "12345");
    fs::create_directory_symlink("../Documents", caches_);
    EXPECT_EQ(scan().size(), 1);
    EXPECT_EQ(expectedCount_, 1);
}

TEST_F(CachesScan, FinishesWithNothingInAnEmptyHome) {
    fs::create_directories(home_);
    EXPECT_TRUE(scan().isEmpty());
    EXPECT_EQ(expectedCount_, 0);
}

TEST_F(CachesScan, LooksAtNoContentsThroughALink) {
    makeLinks(caches_, folder_ / "outside");
    makeLoops(caches_ / "loops");
    fs::create_directories(home_ / "Library/Containers/com.a.app/Data");
    fs::create_directory_symlink(folder_ / "outside", home_ / "Library/Containers/com.a.app/Data/Library");
    writeFile(folder_ / "outside/Caches/file", "12345");
    const auto listing = listed(scan());
    EXPECT_EQ(listing.at(caches_ / "to folder").second, (folder_ / "outside/folder").native().size());
    EXPECT_EQ(listing.at(home_ / "Library/Containers/com.a.app/Data/Library/Caches").second, 0U);
}

TEST_F(CachesScan, StopsWhenItIsCancelledAndStillReportsWhatItHas) {
    makeWide(caches_, 50);
    fs::create_directories(home_ / "Library/Containers/com.a.app");
    int posts = 0;
    const auto items = scan([&](SChOperation& operation) {
        if (++posts == 3) {
            operation.cancel();
        }
    });
    EXPECT_EQ(posts, 3);
    EXPECT_EQ(items.size(), 3);  // the fourth item was begun, and not finished
}

TEST_F(CachesScan, CopesWithAFolderThatGrowsAndShrinksMeanwhile) {
    for (int number = 0; number < 30; ++number) {
        writeFile(caches_ / std::to_string(number) / "file", "12345");
    }
    writeFile(home_ / "Library/Containers/com.a.app/Data/Library/Caches/file", "12345");
    int posts = 0;
    const auto items = scan([&](SChOperation&) {
        if (++posts == 1) {
            fs::remove_all(caches_);
            fs::remove_all(home_ / "Library/Containers");
        }
        writeFile(caches_ / ("new" + std::to_string(posts)), "12345");
    });
    EXPECT_EQ(expectedCount_, 31);
    const auto listing = listed(items);
    EXPECT_EQ(listing.at(home_ / "Library/Containers/com.a.app/Data/Library/Caches").second, 0U);
    int measured = 0;
    for (const auto& [path, item] : listing) {
        EXPECT_THAT(item.second, testing::AnyOf(0U, 5U)) << path;
        measured += item.second == 5 && !item.first.native().starts_with("new") ? 1 : 0;
    }
    EXPECT_GE(measured, 1);  // what was added before the first post; of the rest, what was measured ahead of it
}

}  // namespace brimvault::tests
