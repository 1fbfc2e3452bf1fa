#include "engine/model/FileFacts.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/TextPrinting.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using engine::FileFacts;
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

}  // namespace brimvault::tests
