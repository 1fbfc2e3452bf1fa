#include "platform/QuorvelFallManager.h"

#include <gtest/gtest.h>

#include <QLibrary>
#include <filesystem>
#include <fstream>

#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using platform::QuorvelFallManager;
namespace fs = std::filesystem;

namespace {

const fs::path library = BRIMVAULT_TEST_LIBRARY;  // a library that counts how often it was started

}  // namespace

TEST(QuorvelFallManager, IsStartedWhereItLiesBesideTheProgramAndNotLookedForElsewhere) {
    const TemporaryFolder folder;
    EXPECT_FALSE(QuorvelFallManager::start(folder.path()));
    std::ofstream(folder / library.filename()) << "no library";
    EXPECT_FALSE(QuorvelFallManager::start(folder.path()));
    EXPECT_FALSE(QuorvelFallManager::start(""));
    fs::create_directory(folder / "beside");
    fs::copy_file(library, folder / "beside" / library.filename());
    EXPECT_TRUE(QuorvelFallManager::start(folder / "beside"));
    const auto timesStarted =
        QLibrary::resolve(QString::fromStdString(folder / "beside" / library.filename()), "timesStarted");
    ASSERT_NE(timesStarted, nullptr);
    EXPECT_EQ(reinterpret_cast<int (*)()>(timesStarted)(), 1);
}

}  // namespace brimvault::tests
