#include "files/trees/Measure.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "files/trees/SizeCalculation.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using files::measureContents;
using files::measureItem;
namespace fs = std::filesystem;

TEST(Measure, SumsTheLengthsOfEverythingInAFolder) {
    const TemporaryFolder folder;
    writeFile(folder / "top/a", "12345");
    writeFile(folder / "top/.hidden/b", "1234567");
    writeFile(folder / "top/App.app/Contents/c", "123");
    fs::create_directories(folder / "top/empty/empty");
    EXPECT_EQ(measureItem(folder / "top"), 15U);
    EXPECT_EQ(measureItem(folder / "top/"), 15U);
    EXPECT_EQ(measureItem(folder / "top/a"), 5U);
    EXPECT_EQ(measureItem(folder / "top/empty"), 0U);
}

TEST(Measure, FindsNothingWhereNothingIs) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "12345");
    EXPECT_EQ(measureItem(folder / "missing"), 0U);
    EXPECT_EQ(measureItem(folder / "file/below"), 0U);
    EXPECT_EQ(measureItem(""), 0U);
    EXPECT_EQ(measureContents(folder / "file").logical, 0U);
}

TEST(Measure, TellsLengthFromBytesOnDisk) {
    const TemporaryFolder folder;
    writeSparseFile(folder / "top/sparse", 6'000'000'000);
    writeFile(folder / "top/inner/full", std::string(100'000, 'x'));
    const auto sizes = measureContents(folder / "top");
    EXPECT_EQ(sizes.logical, 6'000'100'000U);
    EXPECT_EQ(sizes.regularFiles, 6'000'100'000U);
    EXPECT_LT(sizes.allocated, 6'000'000'000U);
    struct stat inner {};
    ASSERT_EQ(::stat((folder / "top/inner").c_str(), &inner), 0);
    EXPECT_EQ(sizes.folders, static_cast<std::uint64_t>(inner.st_size));
}

TEST(Measure, CountsAFileOnceForEachOfItsNames) {
    const TemporaryFolder folder;
    writeFile(folder / "top/first", "12345");
    fs::create_hard_link(folder / "top/first", folder / "top/second");
    fs::create_hard_link(folder / "top/first", folder / "elsewhere");
    EXPECT_EQ(measureItem(folder / "top"), 10U);
}

TEST(Measure, CountsALinkAsItself) {
    const TemporaryFolder folder;
    const auto expected = makeLinks(folder / "links", folder / "outside");
    EXPECT_EQ(measureItem(folder / "links"), expected);
    EXPECT_EQ(measureContents(folder / "links").regularFiles, 5U);
    EXPECT_EQ(measureItem(folder / "links/to folder"), (folder / "outside/folder").native().size());
    EXPECT_EQ(measureContents(folder / "links/to folder").logical, 0U);
}

TEST(Measure, FindsNothingThroughALink) {
    const TemporaryFolder folder;
    writeFile(folder / "real/inner/file", "12345");
    fs::create_directory_symlink("real", folder / "link");
    EXPECT_EQ(measureItem(folder / "link/inner"), 0U);
    EXPECT_EQ(measureItem(folder / "link/inner/file"), 0U);
    EXPECT_EQ(measureContents(folder / "link/inner").logical, 0U);
}

TEST(Measure, EndsInATreeOfLoops) {
    const TemporaryFolder folder;
    const auto expected = makeLoops(folder / "loops");
    EXPECT_EQ(measureItem(folder / "loops"), expected);
}

TEST(Measure, TakesOddNamesAsTheyAre) {
    const TemporaryFolder folder;
    const auto expected = makeOddNames(folder / "odd names");
    EXPECT_EQ(measureItem(folder / "odd names"), expected);
}

TEST(Measure, OpensNeitherPipesNorSockets) {
    const TemporaryFolder folder;
    writeFile(folder / "top/file", "12345");
    ASSERT_EQ(::mkfifo((folder / "top/pipe").c_str(), 0600), 0);
    EXPECT_EQ(measureItem(folder / "top"), 5U);
    EXPECT_EQ(measureItem(folder / "top/pipe"), 0U);
}

TEST(Measure, NeedsFewDescriptorsAndLittleStackForADeepTree) {
    const TemporaryFolder folder;
    makeDeep(folder / "deep", 10'000);
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        limitDescriptors(16);
        const auto size = measureItem(folder / "deep");
        return size == 3 ? "" : "measured " + std::to_string(size);
    });
}

TEST(Measure, LeavesOutWhatMayNotBeRead) {
    const TemporaryFolder folder;
    makePermissions(folder / "permissions");
    giveToNobody(folder.path());
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        becomeNobody();
        const auto size = measureItem(folder / "permissions");
        return size == 8 ? "" : "measured " + std::to_string(size);  // "open/gone" and "closed/kept"
    });
}

TEST(Measure, AnswersWhatItHadWhenItWasStopped) {
    const TemporaryFolder folder;
    writeFile(folder / "top/file", "12345");
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(measureItem(folder / "top", stop.get_token()), 0U);
    EXPECT_EQ(measureContents(folder / "top", stop.get_token()).logical, 0U);
}

TEST(SizeCalculation, KeepsARunningTotalOfRegularFiles) {
    const TemporaryFolder folder;
    writeFile(folder / "first/file", "12345");
    fs::create_symlink("file", folder / "first/link");
    writeFile(folder / "second/inner/file", "1234567");
    files::SizeCalculation calculation;
    EXPECT_EQ(calculation.getFolderSize(folder / "first"), 5U);
    EXPECT_EQ(calculation.getFolderSize(folder / "second"), 12U);
    fs::create_directory(folder / "empty");
    EXPECT_EQ(calculation.getFolderSize(folder / "empty"), 12U);
    for (const char* noFolder : {"missing", "first/file", "first/link", "first/file/inner"}) {
        EXPECT_EQ(calculation.getFolderSize(folder / noFolder), 0U) << noFolder;
    }
    EXPECT_EQ(calculation.getFolderSize(folder / "first"), 17U);
    giveToNobody(folder.path());
    fs::permissions(folder / "second", fs::perms::none);
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        becomeNobody();
        const auto closed = calculation.getFolderSize(folder / "second");
        const auto after = calculation.getFolderSize(folder / "first");
        return closed == 0 && after == 22 ? "" : std::to_string(closed) + " and " + std::to_string(after);
    });
    fs::permissions(folder / "second", fs::perms::owner_all);
}

TEST(SizeCalculation, CountsBytesOnDiskForTheFastSize) {
    const TemporaryFolder folder;
    writeSparseFile(folder / "top/sparse", 6'000'000'000);
    writeFile(folder / "top/inner/full", std::string(100'000, 'x'));
    struct stat full {};
    struct stat sparse {};
    ASSERT_EQ(::stat((folder / "top/inner/full").c_str(), &full), 0);
    ASSERT_EQ(::stat((folder / "top/sparse").c_str(), &sparse), 0);
    const auto expected = static_cast<std::uint64_t>(full.st_blocks + sparse.st_blocks) * 512;
    const files::SizeCalculation calculation;
    files::Failure error;
    EXPECT_EQ(calculation.fastFolderSizeOfItemWithPath(folder / "top"), expected);
    EXPECT_EQ(calculation.sizeForFolderAtPath(folder / "top", &error), expected);
    EXPECT_EQ(calculation.sizeForFolderAtPath(folder / "missing", &error), 0U);
    EXPECT_EQ(error.code, 0);
}

}  // namespace brimvault::tests
