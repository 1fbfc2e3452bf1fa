#include "files/NodeStatus.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <cerrno>
#include <system_error>

#include "files/ExtendedAttributes.h"
#include "support/ChildProcess.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using files::NodeKind;
using files::statusOf;
namespace fs = std::filesystem;

TEST(NodeStatus, DescribesALinkItself) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "12345");
    fs::create_symlink("file", folder / "link");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(statusOf(folder / "file")->kind, NodeKind::regular);
    EXPECT_EQ(statusOf(folder / "file")->size, 5U);
    EXPECT_EQ(statusOf(folder / "link")->kind, NodeKind::link);
    EXPECT_EQ(statusOf(folder / "link")->size, 4U);
    EXPECT_EQ(statusOf(folder / "pipe")->kind, NodeKind::other);
    EXPECT_EQ(statusOf(folder.path())->kind, NodeKind::directory);
    EXPECT_NE(statusOf(folder.path())->mount, 0U);
    EXPECT_EQ(statusOf(folder / "missing").code(), ENOENT);
    EXPECT_EQ(statusOf("").code(), ENOENT);
}

TEST(NodeStatus, CountsOneNameForADirectoryAndAllNamesOfAFile) {
    const TemporaryFolder folder;
    fs::create_directories(folder / "directory/one");
    fs::create_directories(folder / "directory/two");
    writeFile(folder / "file", "");
    fs::create_hard_link(folder / "file", folder / "again");
    EXPECT_EQ(statusOf(folder / "directory")->linkCount, 1U);
    EXPECT_EQ(statusOf(folder / "file")->linkCount, 2U);
    EXPECT_EQ(statusOf(folder / "file")->identity, statusOf(folder / "again")->identity);
    EXPECT_FALSE(statusOf(folder / "file")->identity == statusOf(folder / "directory")->identity);
}

TEST(NodeStatus, KnowsWhenAFileWasModified) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    const timespec times[2] = {{1, 0}, {1'700'000'000, 250'000'000}};
    ASSERT_EQ(::utimensat(AT_FDCWD, (folder / "file").c_str(), times, 0), 0);
    EXPECT_EQ(statusOf(folder / "file")->modified.time_since_epoch(), std::chrono::milliseconds(1'700'000'000'250));
}

TEST(MayExist, IsDeniedOnlyByTheSystemsWord) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    fs::create_symlink("nothing", folder / "dangling");
    fs::create_directory(folder / "closed");
    EXPECT_TRUE(files::mayExist(folder / "dangling"));
    EXPECT_FALSE(files::mayExist(folder / "missing"));
    EXPECT_FALSE(files::mayExist(folder / "file/below"));
    EXPECT_TRUE(files::mayExist(folder / std::string(256, 'n')));
    giveToNobody(folder.path());
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        becomeNobody();
        fs::permissions(folder / "closed", fs::perms::none);
        return files::mayExist(folder / "closed/unknown") ? "" : "what cannot be looked at was denied";
    });
}

TEST(ExtendedAttributes, AreReadUnderAProgramsOwnNames) {
    const TemporaryFolder folder;
    const auto file = folder / "file";
    writeFile(file, "");
    if (::lsetxattr(file.c_str(), "user.com.example.mark", "a\0b", 3, 0) != 0) {
        GTEST_SKIP() << "no extended attributes here: " << std::generic_category().message(errno);
    }
    ASSERT_EQ(::lsetxattr(file.c_str(), "user.empty", "", 0, 0), 0);
    fs::create_symlink("file", folder / "link");
    EXPECT_EQ(files::extendedAttribute(file, "com.example.mark"), std::string("a\0b", 3));
    EXPECT_EQ(files::extendedAttribute(file, "empty"), "");
    EXPECT_EQ(files::extendedAttribute(file, "absent"), "");
    EXPECT_EQ(files::extendedAttribute(folder / "link", "com.example.mark"), "");
    EXPECT_EQ(files::extendedAttribute(folder / "missing", "com.example.mark"), "");
    EXPECT_THAT(files::extendedAttributeNames(file), testing::IsSupersetOf({"com.example.mark", "empty"}));
    EXPECT_THAT(files::extendedAttributeNames(folder / "missing"), testing::IsEmpty());
}

TEST(ExtendedAttributes, OfTheSystemKeepTheirPrefix) {
    const TemporaryFolder folder;
    const auto file = folder / "file";
    writeFile(file, "");
    if (::lsetxattr(file.c_str(), "trusted.mark", "x", 1, 0) != 0) {
        GTEST_SKIP() << "no such attributes for this user: " << std::generic_category().message(errno);
    }
    EXPECT_EQ(files::extendedAttribute(file, "trusted.mark"), "x");
    EXPECT_THAT(files::extendedAttributeNames(file), testing::Contains("trusted.mark"));
}

}  // namespace brimvault::tests
