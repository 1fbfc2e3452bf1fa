#include "files/NodeStatus.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <cerrno>
#include <system_error>

#include "files/ExtendedAttributes.h"
#include "files/FileDescriptor.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"

namespace brimvault::tests {

using files::NodeKind;
using files::statusOf;

TEST(NodeStatus, DescribesWhatHasTheNameAndALinkItself) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "12345");
    fs::create_hard_link(folder / "file", folder / "again");
    fs::create_symlink("file", folder / "link");
    fs::create_directories(folder / "directory/one");
    fs::create_directories(folder / "directory/two");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    const timespec times[2] = {{1, 0}, {1'700'000'000, 250'000'000}};
    ASSERT_EQ(::utimensat(AT_FDCWD, (folder / "file").c_str(), times, 0), 0);
    const auto file = statusOf(folder / "file");
    EXPECT_EQ(file->kind, NodeKind::regular);
    EXPECT_EQ(file->size, 5U);
    EXPECT_EQ(file->linkCount, 2U);
    EXPECT_EQ(file->identity, statusOf(folder / "again")->identity);
    EXPECT_EQ(file->modified.time_since_epoch(), std::chrono::milliseconds(1'700'000'000'250));
    EXPECT_FALSE(file->immutable);
    EXPECT_EQ(statusOf(folder / "link")->kind, NodeKind::link);
    EXPECT_EQ(statusOf(folder / "link")->size, 4U);
    EXPECT_EQ(statusOf(folder / "pipe")->kind, NodeKind::other);
    const auto directory = statusOf(folder / "directory");
    EXPECT_EQ(directory->kind, NodeKind::directory);
    EXPECT_EQ(directory->linkCount, 1U) << "however many it has in it";
    EXPECT_NE(directory->mount, 0U);
    EXPECT_FALSE(directory->identity == file->identity);
    EXPECT_EQ(statusOf(folder / "missing").code(), ENOENT);
    EXPECT_EQ(statusOf("").code(), ENOENT);
}

TEST(NodeStatus, KnowsThatAFileIsLocked) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    const files::FileDescriptor file(::open((folder / "file").c_str(), O_RDONLY | O_CLOEXEC));
    int flags = 0;
    const auto set = [&](int changed) { return ::ioctl(file.number(), FS_IOC_SETFLAGS, &changed) == 0; };
    if (::ioctl(file.number(), FS_IOC_GETFLAGS, &flags) != 0 || !set(flags | FS_IMMUTABLE_FL)) {
        GTEST_SKIP() << "cannot lock a file here: " << std::generic_category().message(errno);
    }
    EXPECT_TRUE(statusOf(folder / "file")->immutable);
    EXPECT_TRUE(set(flags));
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

TEST(ExtendedAttributes, AreReadUnderAProgramsOwnNamesOrTheSystems) {
    const TemporaryFolder folder;
    const auto file = folder / "file";
    writeFile(file, "");
    fs::create_symlink("file", folder / "link");
    const auto set = [&](const char* name) { return ::lsetxattr(file.c_str(), name, "a\0b", 3, 0) == 0; };
    const bool isAdministrator = set("trusted.mark");
    if (!set("user.com.example.mark") || ::lsetxattr(file.c_str(), "user.empty", "", 0, 0) != 0) {
        GTEST_SKIP() << "no extended attributes here: " << std::generic_category().message(errno);
    }
    for (const char* name : {"com.example.mark", isAdministrator ? "trusted.mark" : "com.example.mark"}) {
        EXPECT_EQ(files::extendedAttribute(file, name), std::string("a\0b", 3)) << name;
        EXPECT_EQ(files::extendedAttribute(folder / "link", name), "") << name;
        EXPECT_EQ(files::extendedAttribute(folder / "missing", name), "") << name;
        EXPECT_THAT(files::extendedAttributeNames(file), testing::IsSupersetOf({name, "empty"}));
    }
    EXPECT_EQ(files::extendedAttribute(file, "empty"), "");
    EXPECT_EQ(files::extendedAttribute(file, "absent"), "");
    EXPECT_THAT(files::extendedAttributeNames(folder / "missing"), testing::IsEmpty());
    if (!isAdministrator) {
        GTEST_SKIP() << "no attributes of the system for this user";
    }
}

}  // namespace brimvault::tests
