#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>

#include "scanners/ContainersFolderScannerManager.h"
#include "scanners/SystemPathsGenerator.h"
#include "support/SectionWork.h"
#include "support/SubstituteHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using scanners::ContainersFolderScanner;
using scanners::ContainersFolderScannerManager;
using scanners::SystemPathsGenerator;
namespace fs = std::filesystem;

TEST(ContainersFolderScannerManager, ListsOnceForAllWhoWaitAndAfreshAfterAResetWhileAListingHangs) {
    const TemporaryFolder folder;
    fs::create_directories(folder / "list/container");
    Hang hang;
    std::promise<void> begun;
    std::atomic<int> listings = 0;
    ContainersFolderScannerManager manager([&] {
        if (++listings == 1) {
            begun.set_value();
            hang.wait();
        }
        return std::make_unique<ContainersFolderScanner>(folder / "list");
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
    ContainersFolderScannerManager manager(folder / "list");
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
    const SystemPathsGenerator paths;
    const SubstituteHome root("/");
    EXPECT_EQ(SystemPathsGenerator().urlForPath("~/Library").native(), "/Library");
    EXPECT_EQ(paths.urlForPath("~/Library/Containers"), folder / "Library/Containers");
    for (const char* other : {"~", "~anna/Library", "/a/~/b", "relative"}) {
        EXPECT_EQ(paths.urlForPath(other), other);
    }
}

}  // namespace brimvault::tests
