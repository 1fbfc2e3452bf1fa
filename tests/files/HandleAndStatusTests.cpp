#include "files/DirectoryHandle.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <cerrno>
#include <set>
#include <system_error>
#include <utility>

#include "files/ExtendedAttributes.h"
#include "files/FileDescriptor.h"
#include "files/NodeStatus.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"

namespace brimvault::tests {

using files::DirectoryEntry;
using files::DirectoryHandle;
using files::HiddenEntries;
using files::NodeKind;
using files::statusOf;

namespace {

// Each of them once.
std::set<std::string> namesIn(const DirectoryHandle& folder, HiddenEntries hidden) {
    std::set<std::string> names;
    const auto keep = [&](const DirectoryEntry& entry) { return names.insert(entry.name).second; };
    EXPECT_EQ(files::forEachChild(folder, hidden, keep), 0);
    return names;
}

DirectoryHandle opened(const fs::path& folder) {
    auto handle = DirectoryHandle::open(folder);
    EXPECT_TRUE(handle) << folder;
    auto readable = handle->reopenForReading();
    EXPECT_TRUE(readable) << folder;
    return std::move(*readable);
}

long openDescriptors() { return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator()); }

}  // namespace

TEST(DirectoryHandle, OpensOnlyDirectoriesAndFollowsNoLinkOnTheWayOrAtTheEnd) {
    const TemporaryFolder folder;
    fs::create_directories(folder / "real/inside");
    fs::create_directory_symlink("real", folder / "link");
    writeFile(folder / "file", "");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    const std::pair<fs::path, int> answers[] = {
        {"", EINVAL},
        {"relative", EINVAL},
        {".", EINVAL},
        {folder / "real/../real", EINVAL},
        {folder / "real/inside", 0},
        {folder / "link", ENOTDIR},
        {folder / "link/inside", ENOTDIR},
        {folder / "missing", ENOENT},
    };
    const auto never = [](const DirectoryEntry& entry) {
        ADD_FAILURE() << entry.name;
        return true;
    };
    for (const auto& [path, code] : answers) {
        EXPECT_EQ(DirectoryHandle::open(path).code(), code) << path;
        EXPECT_EQ(files::forEachChild(path, HiddenEntries::include, never), code) << path;
    }
    const auto handle = opened(folder.path());
    const std::pair<const char*, int> children[] = {
        {"real", 0}, {"link", ENOTDIR}, {"file", ENOTDIR}, {"pipe", ENOTDIR}, {"missing", ENOENT},
    };
    for (const auto& [name, code] : children) {
        EXPECT_EQ(handle.openChild(name).code(), code) << name;
    }
}

TEST(DirectoryHandle, PassesAFolderThatMayBeEnteredButNotListed) {
    const TemporaryFolder folder;
    fs::create_directories(folder / "hall/room");
    giveToNobody(folder.path());
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        becomeNobody();
        fs::permissions(folder / "hall", fs::perms::owner_exec);
        const auto room = DirectoryHandle::open(folder / "hall/room");
        if (!room) {
            return "the room behind was not reached: " + std::to_string(room.code());
        }
        const auto hall = DirectoryHandle::open(folder / "hall");
        return hall && hall->reopenForReading().code() == EACCES ? "" : "the hall could be listed";
    });
}

TEST(DirectoryHandle, KnowsThatItsParentIsAnotherNow) {
    const TemporaryFolder folder;
    fs::create_directories(folder / "home/child");
    fs::create_directory(folder / "elsewhere");
    const auto home = opened(folder / "home");
    const auto child = opened(folder / "home/child");
    EXPECT_TRUE(child.openParent(home.status()->place()));
    fs::rename(folder / "home/child", folder / "elsewhere/child");
    EXPECT_EQ(child.openParent(home.status()->place()).code(), ESTALE);
    const auto root = opened("/").status()->place();
    EXPECT_EQ(opened("/proc").openParent(root).code(), ESTALE) << "on another mount";
}

TEST(DirectoryHandle, ListsEveryNameOnceUntilTheCallAnswersFalseAndHiddenOnesWhenAsked) {
    const TemporaryFolder folder;
    makeWide(folder / "wide", 3000);
    const auto handle = opened(folder / "wide");
    const auto names = namesIn(handle, HiddenEntries::include);
    EXPECT_EQ(names.size(), 3000U);
    int calls = 0;
    EXPECT_EQ(handle.forEachEntry([&](const DirectoryEntry&) { return ++calls < 3; }), 0);
    EXPECT_EQ(calls, 3);
    EXPECT_EQ(namesIn(handle, HiddenEntries::include), names);
    for (const char* name : {"few/shown", "few/.hidden", "few/..odd", "few/a.b"}) {
        writeFile(folder / name, "");
    }
    const auto few = opened(folder / "few");
    EXPECT_THAT(namesIn(few, HiddenEntries::skip), testing::ElementsAre("a.b", "shown"));
    EXPECT_THAT(namesIn(few, HiddenEntries::include), testing::ElementsAre("..odd", ".hidden", "a.b", "shown"));
}

TEST(DirectoryHandle, GivesEveryDescriptorBack) {
    const TemporaryFolder folder;
    fs::create_directories(folder / "one/two");
    const long before = openDescriptors();
    {
        auto handle = opened(folder / "one");
        handle = opened(folder / "one/two");
        const auto moved = std::move(handle);
        EXPECT_EQ(openDescriptors(), before + 1);
        EXPECT_FALSE(DirectoryHandle::open(folder / "one/missing"));
        EXPECT_TRUE(namesIn(moved, HiddenEntries::include).empty());
        EXPECT_EQ(openDescriptors(), before + 1);
    }
    EXPECT_EQ(openDescriptors(), before);
}

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
