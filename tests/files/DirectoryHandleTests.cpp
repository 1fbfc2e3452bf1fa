#include "files/DirectoryHandle.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cerrno>
#include <set>

#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using files::DirectoryEntry;
using files::DirectoryHandle;
namespace fs = std::filesystem;

namespace {

std::multiset<std::string> namesIn(const DirectoryHandle& folder) {
    std::multiset<std::string> names;
    EXPECT_EQ(folder.forEachEntry([&](const DirectoryEntry& entry) {
        names.insert(entry.name);
        return true;
    }),
              0);
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

TEST(DirectoryHandle, RefusesPathsThatAreNotPlainAndAbsolute) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "inside");
    EXPECT_EQ(DirectoryHandle::open("").code(), EINVAL);
    EXPECT_EQ(DirectoryHandle::open("relative").code(), EINVAL);
    EXPECT_EQ(DirectoryHandle::open(".").code(), EINVAL);
    EXPECT_EQ(DirectoryHandle::open(folder / "inside/../inside").code(), EINVAL);
}

TEST(DirectoryHandle, FollowsNoLinkOnTheWayOrAtTheEnd) {
    const TemporaryFolder folder;
    fs::create_directories(folder / "real/inside");
    fs::create_directory_symlink("real", folder / "link");
    EXPECT_TRUE(DirectoryHandle::open(folder / "real/inside"));
    EXPECT_EQ(DirectoryHandle::open(folder / "link").code(), ENOTDIR);
    EXPECT_EQ(DirectoryHandle::open(folder / "link/inside").code(), ENOTDIR);
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

TEST(DirectoryHandle, OpensAsChildOnlyADirectory) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "directory");
    fs::create_directory_symlink("directory", folder / "link");
    writeFile(folder / "file", "");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    const auto handle = opened(folder.path());
    EXPECT_TRUE(handle.openChild("directory"));
    EXPECT_EQ(handle.openChild("link").code(), ENOTDIR);
    EXPECT_EQ(handle.openChild("file").code(), ENOTDIR);
    EXPECT_EQ(handle.openChild("pipe").code(), ENOTDIR);  // and does not wait for a writer
    EXPECT_EQ(handle.openChild("missing").code(), ENOENT);
}

TEST(DirectoryHandle, StaysInItsDirectoryWhateverItsNameBecomes) {
    const TemporaryFolder folder;
    writeFile(folder / "first/mine", "");
    writeFile(folder / "second/other", "");
    const auto handle = opened(folder / "first");
    fs::rename(folder / "first", folder / "moved");
    fs::rename(folder / "second", folder / "first");
    EXPECT_THAT(namesIn(handle), testing::ElementsAre("mine"));
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
}

TEST(DirectoryHandle, ListsEveryNameOnceAndAgainWhenAsked) {
    const TemporaryFolder folder;
    makeWide(folder / "wide", 3000);
    const auto handle = opened(folder / "wide");
    const auto names = namesIn(handle);
    EXPECT_EQ(names.size(), 3000U);
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), 3000U);
    EXPECT_EQ(namesIn(handle), names);
}

TEST(DirectoryHandle, StopsListingWhenTheCallAnswersFalse) {
    const TemporaryFolder folder;
    makeWide(folder / "wide", 10);
    int calls = 0;
    EXPECT_EQ(opened(folder / "wide").forEachEntry([&](const DirectoryEntry&) { return ++calls < 3; }), 0);
    EXPECT_EQ(calls, 3);
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
        EXPECT_TRUE(namesIn(moved).empty());
        EXPECT_EQ(openDescriptors(), before + 1);
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST(ForEachChild, LeavesOutHiddenNamesOnlyWhenAsked) {
    const TemporaryFolder folder;
    for (const char* name : {"shown", ".hidden", "..odd", "a.b"}) {
        writeFile(folder / name, "");
    }
    const auto names = [&](files::HiddenEntries hidden) {
        std::set<std::string> found;
        EXPECT_EQ(files::forEachChild(folder.path(), hidden,
                                      [&](const DirectoryEntry& entry) { return found.insert(entry.name).second; }),
                  0);
        return found;
    };
    EXPECT_THAT(names(files::HiddenEntries::skip), testing::ElementsAre("a.b", "shown"));
    EXPECT_THAT(names(files::HiddenEntries::include), testing::ElementsAre("..odd", ".hidden", "a.b", "shown"));
}

TEST(ForEachChild, ReadsNoFolderThatIsReachedThroughALink) {
    const TemporaryFolder folder;
    writeFile(folder / "real/inside/file", "");
    fs::create_directory_symlink("real", folder / "link");
    const auto never = [](const DirectoryEntry& entry) {
        ADD_FAILURE() << entry.name;
        return true;
    };
    EXPECT_EQ(files::forEachChild(folder / "link", files::HiddenEntries::include, never), ENOTDIR);
    EXPECT_EQ(files::forEachChild(folder / "link/inside", files::HiddenEntries::include, never), ENOTDIR);
    EXPECT_EQ(files::forEachChild(folder / "missing", files::HiddenEntries::include, never), ENOENT);
}

}  // namespace brimvault::tests
