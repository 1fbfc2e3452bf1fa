#include <gmock/gmock.h>

#include <atomic>
#include <thread>

#include "scanners/ContainersFolderScannerManager.h"
#include "support/FixtureTrees.h"
#include "support/SectionWork.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using scanners::ContainersFolderScanner;
using scanners::ContainersFolderScannerManager;
namespace fs = std::filesystem;

TEST(ContainersFolderScanner, GivesBothFoldersOfEveryContainerWhetherTheyExistOrNot) {
    const TemporaryFolder folder;
    fs::create_directories(folder / "full/Data/Library/Caches");
    fs::create_directories(folder / "bare");
    fs::create_directories(folder / ".hidden/Data/Library/Caches");
    ContainersFolderScanner scanner(folder.path());
    EXPECT_FALSE(scanner.isLoaded());
    scanner.scanContainers();
    EXPECT_TRUE(scanner.isLoaded());
    EXPECT_THAT(scanner.caches(), testing::UnorderedElementsAre(folder / "full/Data/Library/Caches",
                                                                folder / "bare/Data/Library/Caches"));
    ASSERT_EQ(scanner.logs().size(), 2U);
    for (std::size_t index = 0; index < 2; ++index) {
        EXPECT_EQ(scanner.logs()[index], scanner.caches()[index].parent_path() / "Logs");
    }
}

TEST(ContainersFolderScanner, KeepsOnlyWhatHasOneName) {
    const TemporaryFolder folder;
    fs::create_directories(folder / "list/with subfolders/Data");
    writeFile(folder / "list/plain file", "");
    writeFile(folder / "list/two names", "");
    fs::create_hard_link(folder / "list/two names", folder / "elsewhere");
    fs::create_symlink("nothing", folder / "list/link");
    ContainersFolderScanner scanner(folder / "list");
    scanner.scanContainers();
    const auto caches = [&](const char* name) { return folder / "list" / name / "Data/Library/Caches"; };
    EXPECT_THAT(scanner.caches(),
                testing::UnorderedElementsAre(caches("with subfolders"), caches("plain file"), caches("link")));
}

TEST(ContainersFolderScanner, CountsAnEmptyListingAsLoaded) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    fs::create_directory_symlink("missing", folder / "link");
    for (const char* name : {"missing", "file", "link"}) {
        ContainersFolderScanner scanner(folder / name);
        scanner.scanContainers();
        EXPECT_TRUE(scanner.isLoaded()) << name;
        EXPECT_TRUE(scanner.caches().empty()) << name;
        scanner.resetResults();
        EXPECT_FALSE(scanner.isLoaded()) << name;
    }
}

TEST(ContainersFolderScannerManager, ListsAgainOnlyAfterAReset) {
    const TemporaryFolder folder;
    ContainersFolderScannerManager manager(folder / "list");
    EXPECT_TRUE(manager.caches().empty());
    fs::create_directories(folder / "list/container");
    EXPECT_TRUE(manager.caches().empty());
    EXPECT_TRUE(manager.logs().empty());
    manager.reset();
    EXPECT_EQ(manager.logs().size(), 1U);
    EXPECT_EQ(manager.caches().size(), 1U);
}

TEST(ContainersFolderScannerManager, ListsOnceForAllWhoWaitAndAfreshAfterAResetWhileAListingHangs) {
    const TemporaryFolder folder;
    fs::create_directories(folder / "list/container");
    Hang hang;
    std::atomic<int> listings = 0;
    ContainersFolderScannerManager manager([&] {
        if (++listings == 1) {
            hang.wait();
        }
        return std::make_unique<ContainersFolderScanner>(folder / "list");
    });
    std::vector<std::size_t> counts(2);
    {
        const std::jthread first([&] { counts[0] = manager.caches().size(); });
        while (!hang.holdsAny()) {
            std::this_thread::yield();
        }
        const std::jthread second([&] { counts[1] = manager.logs().size(); });
        manager.reset();
        EXPECT_EQ(manager.caches().size(), 1U) << "nobody waits for what hangs";
        EXPECT_EQ(manager.logs().size(), 1U);
        EXPECT_EQ(listings, 2);
        hang.letOn();
    }
    EXPECT_THAT(counts, testing::ElementsAre(1, 1));
    EXPECT_EQ(listings, 2) << "who asked before the reset has the list of then, or the new one";
}

TEST(ContainersFolderScannerManager, GivesWholeListsToThreadsThatAskAtOnce) {
    const TemporaryFolder folder;
    for (int number = 0; number < 50; ++number) {
        fs::create_directories(folder / "list" / std::to_string(number));
    }
    ContainersFolderScannerManager manager(folder / "list");
    const auto ask = [&] {
        for (int round = 0; round < 100; ++round) {
            EXPECT_EQ(manager.caches().size(), 50U);
            EXPECT_EQ(manager.logs().size(), 50U);
        }
    };
    const std::jthread one(ask);
    const std::jthread other(ask);
    for (int round = 0; round < 100; ++round) {
        manager.reset();
    }
}

}  // namespace brimvault::tests
