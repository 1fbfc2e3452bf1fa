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

TEST(QuorvelFallManager, IsStartedWhereItLiesBesideTheProgram) {
    const TemporaryFolder folder;
    fs::copy_file(library, folder / library.filename());
    EXPECT_TRUE(QuorvelFallManager::start(folder.path()));
    const auto timesStarted = QLibrary::resolve(QString::fromStdString(folder / library.filename()), "timesStarted");
    ASSERT_NE(timesStarted, nullptr);
    EXPECT_EQ(reinterpret_cast<int (*)()>(timesStarted)(), 1);
}

TEST(QuorvelFallManager, IsNotMissedAndNotLookedForElsewhere) {
    const TemporaryFolder folder;
    EXPECT_FALSE(QuorvelFallManager::start(folder.path()));
    const TemporaryFolder other;
    std::ofstream(other / library.filename()) << "no library";
    EXPECT_FALSE(QuorvelFallManager::start(other.path()));
    EXPECT_FALSE(QuorvelFallManager::start(""));
}

}  // namespace brimvault::tests
