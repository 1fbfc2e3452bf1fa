#include "engine/model/FileManager.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <cerrno>
#include <system_error>

#include "support/FixtureTrees.h"
#include "support/TextPrinting.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using engine::FileManager;
namespace fs = std::filesystem;

TEST(FileManager, FindsQuarantineOnlyWhereTheUserHasNotAgreed) {
    const TemporaryFolder folder;
    const auto application = folder / "Some.app";
    fs::create_directory(application);
    EXPECT_FALSE(FileManager::isAppPathInQuarantine(application));
    const auto marked = [&](const std::string& mark) {
        return ::lsetxattr(application.c_str(), "user.com.apple.quarantine", mark.data(), mark.size(), 0) == 0;
    };
    if (!marked("0083;5f3b;Browser;")) {
        GTEST_SKIP() << "no extended attributes here: " << std::generic_category().message(errno);
    }
    EXPECT_TRUE(FileManager::isAppPathInQuarantine(application));
    const std::pair<const char*, bool> examples[] = {
        {"00c3;5f3b;Browser;", false},
        {"0040", false},
        {"0000;", true},
        {"0083", true},
        {"zz;0083", false},
        {";0083", false},
        {"\xff\xfe", false},
        {"0083 x;", false},
    };
    for (const auto& [mark, expected] : examples) {
        ASSERT_TRUE(marked(mark));
        EXPECT_EQ(FileManager::isAppPathInQuarantine(application), expected) << mark;
    }
    EXPECT_TRUE(
        FileManager::extendedAttributesListAtPath(application).contains(QStringLiteral("com.apple.quarantine")));
    fs::create_directory_symlink("Some.app", folder / "link");
    EXPECT_FALSE(FileManager::isAppPathInQuarantine(folder / "link"));
}

TEST(FileManager, MeasuresAFolderInThreeWays) {
    const TemporaryFolder folder;
    writeSparseFile(folder / "top/sparse", 1'000'000'000);
    writeFile(folder / "top/inner/file", "12345");
    struct stat inner {};
    ASSERT_EQ(::stat((folder / "top/inner").c_str(), &inner), 0);
    EXPECT_EQ(FileManager::logicalSizeOfFileAtPath(folder / "top"), 1'000'000'005U);
    EXPECT_LT(FileManager::physicalSizeOfFileAtPath(folder / "top"), 1'000'000'000U);
    EXPECT_EQ(FileManager::fullSizeOfFileAtPath(folder / "top"),
              1'000'000'005U + static_cast<std::uint64_t>(inner.st_size));
    EXPECT_EQ(FileManager::physicalSizeOfFileAtPath(folder / "top/sparse"), 1'000'000'000U);
    EXPECT_EQ(FileManager::fullSizeOfFileAtPath(folder / "missing"), 0U);
}

TEST(FileManager, CountsTheEntriesDirectlyInAFolder) {
    const TemporaryFolder folder;
    makeOddNames(folder / "top");
    writeFile(folder / "top/.hidden", "");
    using files::HiddenEntries;
    EXPECT_EQ(FileManager::numberOfFilesInFolder(folder / "top", HiddenEntries::skip), 2);
    EXPECT_EQ(FileManager::numberOfFilesInFolder(folder / "top", HiddenEntries::include), 3);
    EXPECT_EQ(FileManager::numberOfFilesInFolder(folder / "top/.hidden", HiddenEntries::include), 0);
    EXPECT_EQ(FileManager::numberOfFilesInFolder(folder / "missing", HiddenEntries::include), 0);
}

TEST(FileManager, KnowsTheModificationDate) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    const QDateTime date(QDate(2024, 2, 29), QTime(12, 30), Qt::UTC);
    const timespec times[2] = {{}, {date.toSecsSinceEpoch(), 0}};
    ASSERT_EQ(::utimensat(-1, (folder / "file").c_str(), times, 0), 0);
    EXPECT_EQ(FileManager::modificationDateOfFilePath(folder / "file"), date);
    EXPECT_EQ(FileManager::stringmodificationDateOfFilePath(folder / "file", QLocale::ShortFormat),
              QLocale().toString(date.toLocalTime().date(), QLocale::ShortFormat));
    EXPECT_FALSE(FileManager::modificationDateOfFilePath(folder / "missing"));
    EXPECT_FALSE(FileManager::stringmodificationDateOfFilePath(folder / "missing", QLocale::ShortFormat));
}

TEST(FileManager, PresentsPathsToPeople) {
    EXPECT_EQ(FileManager::displayNameAtPath("/a/b.txt"), QStringLiteral("b.txt"));
    EXPECT_EQ(FileManager::displayNameAtPath("/a/b/"), QStringLiteral("b"));
    EXPECT_EQ(FileManager::displayPathAtPath("/a/1:2:3"), QStringLiteral("/a/1/2/3"));
    EXPECT_EQ(FileManager::displayPathAtPath("/a/b"), QStringLiteral("/a/b"));
    EXPECT_EQ(FileManager::getLocalizedPath("/a/\xff"), QStringLiteral(u"/a/\ufffd"));
}

TEST(FileManager, FindsNoLockWhereNothingCanBeRead) {
    const TemporaryFolder folder;
    EXPECT_FALSE(FileManager::isFileLocked(folder.path()));
    EXPECT_FALSE(FileManager::isFileLocked(folder / "missing"));
}

}  // namespace brimvault::tests
