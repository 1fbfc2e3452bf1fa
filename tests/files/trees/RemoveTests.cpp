#include "files/trees/Remove.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>

#include "files/NodeStatus.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using files::RemovalEnd;
namespace fs = std::filesystem;

namespace {

bool isThere(const fs::path& path) { return fs::exists(fs::symlink_status(path)); }

}  // namespace

TEST(Remove, TakesAwayAFileALinkAFolderOrAPipe) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    writeFile(folder / "outside", "precious");
    writeFile(folder / "folder/inner/file", "");
    fs::create_symlink("outside", folder / "link");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    for (const char* name : {"file", "link", "folder", "pipe"}) {
        const auto outcome = files::remove(folder / name);
        EXPECT_EQ(outcome.end, RemovalEnd::gone) << name;
        EXPECT_FALSE(outcome.failure) << name;
        EXPECT_FALSE(isThere(folder / name)) << name;
    }
    EXPECT_EQ(fs::file_size(folder / "outside"), 8U);
}

TEST(Remove, CallsGoneWhatWasNotThere) {
    const TemporaryFolder folder;
    EXPECT_EQ(files::remove(folder / "missing").end, RemovalEnd::gone);
    EXPECT_EQ(files::remove(folder / "missing/inside").end, RemovalEnd::gone);
}

TEST(Remove, RefusesPathsThatNameNoPlainItem) {
    const TemporaryFolder folder;
    writeFile(folder / "inner/file", "");
    const auto before = fingerprint(folder.path());
    for (const fs::path& path :
         {fs::path(), fs::path("/"), fs::path("relative"), fs::path("."), fs::path(".."), folder / "inner/..",
          folder / "inner/.", folder / "inner/../inner/file", folder / "inner/", folder / "./inner"}) {
        const auto outcome = files::remove(path);
        EXPECT_EQ(outcome.end, RemovalEnd::kept) << path;
        ASSERT_TRUE(outcome.failure) << path;
        EXPECT_EQ(outcome.failure->code, EINVAL) << path;
        EXPECT_EQ(outcome.failure->path, path);
    }
    EXPECT_EQ(fingerprint(folder.path()), before);
}

TEST(Remove, FollowsNoLinkInTheTree) {
    const TemporaryFolder folder;
    makeLinks(folder / "links", folder / "outside");
    makeLoops(folder / "loops");
    const auto outside = fingerprint(folder / "outside");
    EXPECT_EQ(files::remove(folder / "links").end, RemovalEnd::gone);
    EXPECT_EQ(files::remove(folder / "loops").end, RemovalEnd::gone);
    EXPECT_FALSE(isThere(folder / "links"));
    EXPECT_FALSE(isThere(folder / "loops"));
    EXPECT_EQ(fingerprint(folder / "outside"), outside);
}

TEST(Remove, RefusesAnItemBehindALink) {
    const TemporaryFolder folder;
    writeFile(folder / "real/inner/file", "");
    fs::create_directory_symlink("real", folder / "link");
    for (const char* path : {"link/inner", "link/inner/file"}) {
        const auto outcome = files::remove(folder / path);
        EXPECT_EQ(outcome.end, RemovalEnd::kept);
        ASSERT_TRUE(outcome.failure);
        EXPECT_EQ(outcome.failure->code, ENOTDIR);
    }
    EXPECT_TRUE(isThere(folder / "real/inner/file"));
}

TEST(Remove, LeavesTheOtherNamesOfAFile) {
    const TemporaryFolder folder;
    writeFile(folder / "tree/name", "12345");
    fs::create_hard_link(folder / "tree/name", folder / "other name");
    EXPECT_EQ(files::remove(folder / "tree").end, RemovalEnd::gone);
    EXPECT_EQ(fs::file_size(folder / "other name"), 5U);
}

TEST(Remove, TakesOddNamesAsTheyAre) {
    const TemporaryFolder folder;
    makeOddNames(folder / "tree");
    for (const auto& name : oddNames()) {
        const auto item = folder / "tree/files" / name;
        EXPECT_EQ(files::remove(item).end, RemovalEnd::gone) << item;
        EXPECT_FALSE(isThere(item)) << item;
    }
    EXPECT_TRUE(fs::is_empty(folder / "tree/files"));
    EXPECT_EQ(files::remove(folder / "tree").end, RemovalEnd::gone);
    EXPECT_FALSE(isThere(folder / "tree"));
}

TEST(Remove, EmptiesAWideFolder) {
    const TemporaryFolder folder;
    makeWide(folder / "wide", 20'000);
    EXPECT_EQ(files::remove(folder / "wide").end, RemovalEnd::gone);
    EXPECT_FALSE(isThere(folder / "wide"));
}

TEST(Remove, NeedsFewDescriptorsAndLittleStackForADeepTree) {
    const TemporaryFolder folder;
    makeDeep(folder / "deep", 10'000);
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        limitDescriptors(16);
        const auto outcome = files::remove(folder / "deep");
        return outcome.end == RemovalEnd::gone ? "" : outcome.failure ? outcome.failure->text() : "cancelled";
    });
    EXPECT_FALSE(isThere(folder / "deep"));
}

TEST(Remove, TouchesNothingWhenItIsStoppedBefore) {
    const TemporaryFolder folder;
    writeFile(folder / "tree/inner/file", "");
    writeFile(folder / "file", "");
    fs::create_directory(folder / "empty");
    const auto before = fingerprint(folder.path());
    std::stop_source stop;
    stop.request_stop();
    for (const char* name : {"tree", "file", "empty"}) {
        const auto outcome = files::remove(folder / name, stop.get_token());
        EXPECT_EQ(outcome.end, RemovalEnd::cancelled) << name;
        EXPECT_FALSE(outcome.failure) << name;
    }
    EXPECT_EQ(fingerprint(folder.path()), before);
}

}  // namespace brimvault::tests
