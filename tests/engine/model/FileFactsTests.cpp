#include "engine/model/FileFacts.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <QLocale>
#include <clocale>

#include "engine/model/FileManager.h"
#include "engine/model/FileSize.h"
#include "support/FixtureTrees.h"
#include "support/TextPrinting.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using engine::FileFacts;
using engine::FileManager;
using engine::FileSize;
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
    const auto picture = folder / "picture.png";
    writeFile(picture, "no picture");
    const timespec times[] = {{1'000'000'000, 500'000'000}, {1'234'567'890, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, picture.c_str(), times, 0), 0);
    ASSERT_EQ(::chmod(picture.c_str(), 04640), 0);
    fs::create_symlink("picture.png", folder / "link.png");

    const auto file = FileFacts::of(picture).value();
    EXPECT_EQ(file.kind, files::NodeKind::regular);
    EXPECT_EQ(file.name, QStringLiteral("picture.png"));
    EXPECT_EQ(file.folder, QString::fromStdString(folder.path().native()));
    EXPECT_FALSE(file.type.isEmpty());
    EXPECT_EQ(file.accessed.toMSecsSinceEpoch(), 1'000'000'000'500);
    EXPECT_EQ(file.modified.toSecsSinceEpoch(), 1'234'567'890);
    EXPECT_EQ(file.permissionText(), QStringLiteral("rwSr-----"));
    EXPECT_EQ(FileManager::modificationDateOfFilePath(picture), file.modified);
    EXPECT_EQ(FileManager::stringmodificationDateOfFilePath(picture, QLocale::ShortFormat),
              QLocale().toString(file.modified.date(), QLocale::ShortFormat));

    const auto link = FileFacts::of(folder / "link.png").value();
    EXPECT_EQ(link.kind, files::NodeKind::link);
    EXPECT_EQ(link.linkTarget, QStringLiteral("picture.png"));
    EXPECT_NE(link.modified, file.modified);

    const auto itself = FileFacts::of(folder.path()).value();
    EXPECT_EQ(itself.kind, files::NodeKind::directory);
    EXPECT_TRUE(itself.type.isEmpty());
    EXPECT_EQ(itself.permissionText(), QStringLiteral("rwx------"));
    EXPECT_FALSE(FileFacts::of(folder / "missing"));
}

TEST(FileFacts, NamesTheOwnerAndGivesTheNumberOfOneWithoutAName) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    if (::lchown((folder / "file").c_str(), 1'234'567, 1'234'568) != 0) {
        GTEST_SKIP() << "not allowed to give a file away";
    }
    const auto facts = FileFacts::of(folder / "file").value();
    EXPECT_EQ(facts.owner, QStringLiteral("1234567"));
    EXPECT_EQ(facts.group, QStringLiteral("1234568"));
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
        GTEST_SKIP() << "no extended attributes here";
    }
    EXPECT_TRUE(FileManager::isAppPathInQuarantine(application));
    const std::pair<bool, std::vector<const char*>> examples[] = {
        {true, {"0000;", "0083"}},
        {false, {"00c3;5f3b;Browser;", "0040", "zz;0083", ";0083", "\xff\xfe", "0083 x;"}},
    };
    for (const auto& [expected, marks] : examples) {
        for (const char* mark : marks) {
            ASSERT_TRUE(marked(mark));
            EXPECT_EQ(FileManager::isAppPathInQuarantine(application), expected) << mark;
        }
    }
    EXPECT_TRUE(
        FileManager::extendedAttributesListAtPath(application).contains(QStringLiteral("com.apple.quarantine")));
    fs::create_directory_symlink("Some.app", folder / "link");
    EXPECT_FALSE(FileManager::isAppPathInQuarantine(folder / "link"));
}

TEST(FileManager, MeasuresAndCountsWhatAFolderHolds) {
    const TemporaryFolder folder;
    const auto top = folder / "top";
    writeSparseFile(top / "sparse", 1'000'000'000);
    writeFile(top / "inner/file", "12345");
    writeFile(top / ".hidden", "");
    struct stat inner {};
    ASSERT_EQ(::stat((top / "inner").c_str(), &inner), 0);
    EXPECT_EQ(FileManager::logicalSizeOfFileAtPath(top), 1'000'000'005U);
    EXPECT_LT(FileManager::physicalSizeOfFileAtPath(top), 1'000'000'000U);
    EXPECT_EQ(FileManager::fullSizeOfFileAtPath(top), 1'000'000'005U + static_cast<std::uint64_t>(inner.st_size));
    EXPECT_EQ(FileManager::physicalSizeOfFileAtPath(top / "sparse"), 1'000'000'000U);
    using files::HiddenEntries;
    EXPECT_EQ(FileManager::numberOfFilesInFolder(top, HiddenEntries::skip), 2);
    EXPECT_EQ(FileManager::numberOfFilesInFolder(top, HiddenEntries::include), 3);
    EXPECT_FALSE(FileManager::isFileLocked(top));

    const auto missing = folder / "missing";
    EXPECT_EQ(FileManager::fullSizeOfFileAtPath(missing), 0U);
    EXPECT_EQ(FileManager::numberOfFilesInFolder(missing, HiddenEntries::include), 0);
    EXPECT_FALSE(FileManager::modificationDateOfFilePath(missing));
    EXPECT_FALSE(FileManager::stringmodificationDateOfFilePath(missing, QLocale::ShortFormat));
    EXPECT_FALSE(FileManager::isFileLocked(missing));
}

TEST(FileManager, PresentsPathsToPeople) {
    EXPECT_EQ(FileManager::displayNameAtPath("/a/b.txt"), QStringLiteral("b.txt"));
    EXPECT_EQ(FileManager::displayNameAtPath("/a/b/"), QStringLiteral("b"));
    EXPECT_EQ(FileManager::displayPathAtPath("/a/1:2:3"), QStringLiteral("/a/1/2/3"));
    EXPECT_EQ(FileManager::getLocalizedPath("/a/\xff"), QStringLiteral(u"/a/\ufffd"));
    EXPECT_EQ(FileSize::getDisplayNameAtPath("/home/anna/note\n.txt"), QStringLiteral(u"note\ufffd.txt"));
}

namespace {

// Halves go to the even digit, also where the nearest number that the machine holds lies below the half (1015) or
// above it (1145).
const QString sizes = QStringLiteral(
    "0 1 999 1000 1005 1015 1145 1499 1501 1995 2500 4500 10010 99985 99995 99999 100060 100250 100350 999499 999949 "
    "999950 999999 1000000 1015000 123456789 999999999 1000000000 1240000000 999999999999 1000000000000 "
    "5000000000000000 999900000000000000 1000000000000000000 18446744073709551615");

QString texts(QString (*format)(quint64)) {
    QStringList texts = sizes.split(QLatin1Char(' '));
    for (QString& size : texts) {
        size = format(size.toULongLong());
    }
    return texts.join(QLatin1Char('|'));
}

}  // namespace

TEST(FileSize, IsWholeInTheShortFormAndHasAtMostTwoDecimalsInTheLongOneWhateverTheLocale) {
    for (const char* locale : {"C", "de_DE", "ar_EG"}) {
        SCOPED_TRACE(locale);
        // Where the system does not have the locale, the program's own still changes.
        std::setlocale(LC_ALL, (std::string(locale) + ".UTF-8").c_str());
        QLocale::setDefault(QLocale(QString::fromLatin1(locale)));
        EXPECT_EQ(
            texts(&FileSize::formatMemoryStringDot0),
            QStringLiteral("0 B|1 B|999 B|1 KB|1 KB|1 KB|1 KB|1 KB|2 KB|2 KB|2 KB|4 KB|10 KB|100 KB|100 KB|100 KB|"
                           "100 KB|100 KB|100 KB|999 KB|1000 KB|1000 KB|1000 KB|1 MB|1 MB|123 MB|1000 MB|1 GB|1 GB|"
                           "1000 GB|1 TB|5000 TB|999900 TB|1000000 TB|18446744 TB"));
        EXPECT_EQ(
            texts(&FileSize::formatMemoryStringDot1),
            QStringLiteral("0 B|1 B|999 B|1 KB|1 KB|1.02 KB|1.14 KB|1.5 KB|1.5 KB|2 KB|2.5 KB|4.5 KB|10.01 KB|"
                           "99.98 KB|100 KB|100 KB|100.1 KB|100.2 KB|100.4 KB|999.5 KB|999.9 KB|1000 KB|1000 KB|"
                           "1 MB|1.02 MB|123.5 MB|1000 MB|1 GB|1.24 GB|1000 GB|1 TB|5 PB|999.9 PB|1 PB|18.45 PB"));
    }
    std::setlocale(LC_ALL, "C");
    QLocale::setDefault(QLocale::c());
}

}  // namespace brimvault::tests
