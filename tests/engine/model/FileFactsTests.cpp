#include "engine/model/FileFacts.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "engine/model/FileManager.h"
#include "support/FixtureTrees.h"
#include "support/TextPrinting.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using engine::FileFacts;
using engine::FileManager;
namespace fs = std::filesystem;

TEST(FileFacts, WritesPermissionsWithTheSpecialBits) {
    const std::pair<std::uint32_t, const char*> texts[] = {
        {0755, "rwxr-xr-x"},  {0, "---------"},     {0124, "--x-w-r--"},  {04755, "rwsr-xr-x"}, {02755, "rwxr-sr-x"},
        {01777, "rwxrwxrwt"}, {07000, "--S--S--T"}, {07777, "rwsrwsrwt"}, {01776, "rwxrwxrwT"},
    };
    for (const auto& [permissions, text] : texts) {
        FileFacts facts;
        facts.permissions = permissions;
        EXPECT_EQ(facts.permissionText(), QLatin1String(text));
    }
}

TEST(FileFacts, TellsOfFilesFoldersAndLinksThemselves) {
    const TemporaryFolder folder;
    writeFile(folder / "picture.png", "no picture");
    const timespec times[] = {{1'000'000'000, 500'000'000}, {1'234'567'890, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, (folder / "picture.png").c_str(), times, 0), 0);
    ASSERT_EQ(::chmod((folder / "picture.png").c_str(), 04640), 0);
    fs::create_symlink("picture.png", folder / "link.png");

    const auto file = FileFacts::of(folder / "picture.png");
    ASSERT_TRUE(file);
    EXPECT_EQ(file->kind, files::NodeKind::regular);
    EXPECT_EQ(file->name, QStringLiteral("picture.png"));
    EXPECT_EQ(file->folder, QString::fromStdString(folder.path().native()));
    EXPECT_FALSE(file->type.isEmpty());
    EXPECT_EQ(file->accessed.toMSecsSinceEpoch(), 1'000'000'000'500);
    EXPECT_EQ(file->modified.toSecsSinceEpoch(), 1'234'567'890);
    EXPECT_EQ(file->permissionText(), QStringLiteral("rwSr-----"));
    EXPECT_EQ(FileManager::modificationDateOfFilePath(folder / "picture.png"), file->modified);
    EXPECT_EQ(FileManager::stringmodificationDateOfFilePath(folder / "picture.png", QLocale::ShortFormat),
              QLocale().toString(file->modified.date(), QLocale::ShortFormat));

    const auto link = FileFacts::of(folder / "link.png");
    ASSERT_TRUE(link);
    EXPECT_EQ(link->kind, files::NodeKind::link);
    EXPECT_EQ(link->linkTarget, QStringLiteral("picture.png"));
    EXPECT_NE(link->modified, file->modified);

    const auto itself = FileFacts::of(folder.path());
    ASSERT_TRUE(itself);
    EXPECT_EQ(itself->kind, files::NodeKind::directory);
    EXPECT_TRUE(itself->type.isEmpty());
    EXPECT_EQ(itself->permissionText(), QStringLiteral("rwx------"));
    EXPECT_FALSE(FileFacts::of(folder / "missing"));
}

TEST(FileFacts, NamesTheOwnerAndGivesTheNumberOfOneWithoutAName) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    if (::lchown((folder / "file").c_str(), 1'234'567, 1'234'568) != 0) {
        GTEST_SKIP() << "not allowed to give a file away";
    }
    const auto facts = FileFacts::of(folder / "file");
    ASSERT_TRUE(facts);
    EXPECT_EQ(facts->owner, QStringLiteral("1234567"));
    EXPECT_EQ(facts->group, QStringLiteral("1234568"));
    EXPECT_EQ(FileFacts::of(folder.path())->owner, QStringLiteral("root"));  // who may give away
}

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

TEST(FileManager, CountsTheEntriesOfAFolderAndKnowsNothingOfWhatIsMissing) {
    const TemporaryFolder folder;
    makeOddNames(folder / "top");
    writeFile(folder / "top/.hidden", "");
    using files::HiddenEntries;
    EXPECT_EQ(FileManager::numberOfFilesInFolder(folder / "top", HiddenEntries::skip), 2);
    EXPECT_EQ(FileManager::numberOfFilesInFolder(folder / "top", HiddenEntries::include), 3);
    EXPECT_EQ(FileManager::numberOfFilesInFolder(folder / "missing", HiddenEntries::include), 0);
    EXPECT_FALSE(FileManager::modificationDateOfFilePath(folder / "missing"));
    EXPECT_FALSE(FileManager::stringmodificationDateOfFilePath(folder / "missing", QLocale::ShortFormat));
    EXPECT_FALSE(FileManager::isFileLocked(folder.path()));
    EXPECT_FALSE(FileManager::isFileLocked(folder / "missing"));
}

TEST(FileManager, PresentsPathsToPeople) {
    EXPECT_EQ(FileManager::displayNameAtPath("/a/b.txt"), QStringLiteral("b.txt"));
    EXPECT_EQ(FileManager::displayNameAtPath("/a/b/"), QStringLiteral("b"));
    EXPECT_EQ(FileManager::displayPathAtPath("/a/1:2:3"), QStringLiteral("/a/1/2/3"));
    EXPECT_EQ(FileManager::getLocalizedPath("/a/\xff"), QStringLiteral(u"/a/\ufffd"));
}

}  // namespace brimvault::tests
