#include "files/DirectoryHandle.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cerrno>
#include <set>
#include <utility>

#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"

namespace brimvault::tests {

using files::DirectoryEntry;
using files::DirectoryHandle;
using files::HiddenEntries;

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

TEST(DirectoryHandle, ListsEveryNameOnceAndAgainUntilTheCallAnswersFalse) {
    const TemporaryFolder folder;
    makeWide(folder / "wide", 3000);
    const auto handle = opened(folder / "wide");
    const auto names = namesIn(handle, HiddenEntries::include);
    EXPECT_EQ(names.size(), 3000U);
    int calls = 0;
    EXPECT_EQ(handle.forEachEntry([&](const DirectoryEntry&) { return ++calls < 3; }), 0);
    EXPECT_EQ(calls, 3);
    EXPECT_EQ(namesIn(handle, HiddenEntries::include), names);
}

TEST(DirectoryHandle, LeavesOutHiddenNamesOnlyWhenAsked) {
    const TemporaryFolder folder;
    for (const char* name : {"shown", ".hidden", "..odd", "a.b"}) {
        writeFile(folder / name, "");
    }
    const auto handle = opened(folder.path());
    EXPECT_THAT(namesIn(handle, HiddenEntries::skip), testing::ElementsAre("a.b", "shown"));
    EXPECT_THAT(namesIn(handle, HiddenEntries::include), testing::ElementsAre("..odd", ".hidden", "a.b", "shown"));
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

}  // namespace brimvault::tests
