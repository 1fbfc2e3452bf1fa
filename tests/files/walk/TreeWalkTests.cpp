#include "files/walk/TreeWalk.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <functional>
#include <iterator>
#include <vector>

#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"

namespace brimvault::tests {

using namespace std::string_literals;

using files::DirectoryHandle;
using files::FolderReference;
using files::StackItem;
using files::TreeWalk;

namespace {

// Keeps a line for everything it is told, and does what a test has it do on the way.
class Recorder final : public files::TreeVisitor {
public:
    void onFolderEntered(const DirectoryHandle&) override { tell("enter"); }
    void onFile(const DirectoryHandle&, const char* name, files::NodeKind) override {
        tell(std::string("file ") + name);
    }
    void onFolderLeft(const DirectoryHandle&, const files::VisitedFolder& folder, const DirectoryHandle&) override {
        tell("left " + folder.name);
    }
    void onFolderClosed(const DirectoryHandle&, const char* name, int code) override {
        tell(std::string("closed ") + name + " " + std::to_string(code));
    }
    void onWayLost(const char* name, int code) override {
        tell(std::string("lost ") + name + " " + std::to_string(code));
    }

    [[nodiscard]] files::WayBack wayBack() const override { return way; }

    // Does this when it is told that.
    void at(const std::string& line, const std::function<void()>& action) {
        meanwhile = [line, action](const std::string& told) {
            if (told == line) {
                action();
            }
        };
    }
    [[nodiscard]] std::ptrdiff_t count(const std::string& line) const {
        return std::count(lines.begin(), lines.end(), line);
    }

    std::vector<std::string> lines;
    files::WayBack way = files::WayBack::byNumber;
    std::function<void(const std::string&)> meanwhile = [](const std::string&) {};

private:
    void tell(const std::string& line) {
        lines.push_back(line);
        meanwhile(line);
    }
};

// One who always has nothing to do, and keeps what he is given.
class IdleWorker final : public files::WorkSharing {
public:
    [[nodiscard]] bool isShareWanted() const override { return true; }
    void give(FolderReference share) override { shares.push_back(std::move(share)); }
    void onLargeTree() override {}

    std::vector<FolderReference> shares;
};

// From now on the system fails to tell of an open folder what it is. In a child process. False when it cannot be.
bool refuseToTellOfDescriptors() {
    constexpr auto flags = offsetof(seccomp_data, args[2]);
    std::array<sock_filter, 6> program = {{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, __NR_statx, 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, flags),
        BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, AT_EMPTY_PATH, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EIO),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    }};
    const sock_fprog filter{program.size(), program.data()};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

bool walk(Recorder& recorder, const fs::path& folder, const std::stop_token& stop = {}) {
    const auto parent = DirectoryHandle::open(folder.parent_path());
    EXPECT_TRUE(parent);
    return TreeWalk(recorder, *parent, stop).visit(folder.filename().c_str());
}

DirectoryHandle openRoot() { return std::move(*DirectoryHandle::open("/")); }

FolderReference folderNamed(const std::string& name, DirectoryHandle handle) {
    return {std::make_shared<files::VisitedFolder>(name, nullptr), std::move(handle), {}};
}

}  // namespace

TEST(TreeWalk, VisitsFilesBeforeFoldersAndLeavesAFolderAfterItsContents) {
    const TemporaryFolder folder;
    writeFile(folder / "top/inner/deepest/c", "");
    writeFile(folder / "top/inner/b", "");
    writeFile(folder / "top/a", "");
    Recorder recorder;
    EXPECT_TRUE(walk(recorder, folder / "top"));
    EXPECT_THAT(recorder.lines, testing::ElementsAre("enter", "file a", "enter", "file b", "enter", "file c",
                                                     "left deepest", "left inner", "left top"));
}

TEST(TreeWalk, TellsWhatHasBecomeOfAFolderSinceItWasListed) {
    for (const bool isLink : {true, false}) {
        const TemporaryFolder folder;
        writeFile(folder / "outside/precious", "");
        fs::create_directories(folder / "top/inner");
        writeFile(folder / "top/a", "");
        Recorder recorder;
        recorder.at("file a", [&] {
            fs::remove(folder / "top/inner");
            if (isLink) {
                fs::create_directory_symlink(folder / "outside", folder / "top/inner");
            }
        });
        EXPECT_TRUE(walk(recorder, folder / "top"));
        const auto told = isLink ? "file inner" : "closed inner " + std::to_string(ENOENT);
        EXPECT_THAT(recorder.lines, testing::ElementsAre("enter", "file a", told, "left top"));
    }
}

TEST(TreeWalk, EndsWhereTheWayBackIsLost) {
    const TemporaryFolder folder;
    makeDeep(folder / "top", 3 * TreeWalk::maxOpenFolders);
    writeFile(folder / "top/inner/before/file above", "");
    fs::create_directory(folder / "elsewhere");
    Recorder recorder;
    recorder.at("file file", [&] { fs::rename(folder / "top/inner/inner/inner", folder / "elsewhere/inner"); });
    EXPECT_TRUE(walk(recorder, folder / "top"));
    EXPECT_EQ(recorder.lines.back(), "lost inner " + std::to_string(ESTALE));
    EXPECT_EQ(recorder.count("left top"), 0);
}

// The number of a folder that was removed is given to the next that is made.
TEST(TreeWalk, TakesNoNewFolderOfTheSameNumberForOneThatItLeftBehind) {
    const TemporaryFolder folder;
    makeDeep(folder / "top", 3 * TreeWalk::maxOpenFolders);
    const auto passed = folder / "top/inner/inner";
    auto other = folder / "other";
    Recorder recorder;
    recorder.at("file file", [&] {  // at the bottom
        const auto number = files::statusOf(passed)->identity.inode;
        fs::rename(passed / "inner", folder / "below");
        fs::remove(passed);
        constexpr int maxTries = 100;
        for (int tries = 0; tries < maxTries && fs::create_directory(other); ++tries) {
            if (files::statusOf(other)->identity.inode == number) {
                fs::rename(folder / "below", other / "inner");
                return;
            }
            other += "+";
        }
    });
    EXPECT_TRUE(walk(recorder, folder / "top"));
    if (fs::exists(folder / "below")) {
        GTEST_SKIP() << "the file system gives no number twice";
    }
    EXPECT_EQ(recorder.lines.back(), "lost inner " + std::to_string(ESTALE));
    const auto notLeft = recorder.count("enter") - recorder.count("left inner");
    EXPECT_EQ(notLeft, 4) << "the folder, the two that hold it, and the one that was moved";
}

TEST(TreeWalk, ClosesNothingThatItCouldNotTellFromAnotherWhereThatMatters) {
    const TemporaryFolder folder;
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        if (const auto reason = keepMountsPrivate(); !reason.empty()) {
            return cannotTry(reason);
        }
        if (::mount("none", folder.path().c_str(), "ramfs", 0, nullptr) != 0) {
            return cannotTry("there is no file system without times of birth");
        }
        makeDeep(folder / "fits/top", TreeWalk::maxOpenFoldersOnWayBack - 10);
        makeDeep(folder / "deeper/top", TreeWalk::maxOpenFoldersOnWayBack + 10);
        std::string wrong;
        for (const auto way : {files::WayBack::byNumber, files::WayBack::byTimeOfBirth}) {
            Recorder fits;
            Recorder deeper;
            fits.way = deeper.way = way;
            (void)walk(fits, folder / "fits/top");
            (void)walk(deeper, folder / "deeper/top");
            const bool stops = way == files::WayBack::byTimeOfBirth;
            const bool isStopped = deeper.count("closed inner " + std::to_string(EMFILE)) == 1;
            wrong += fits.count("file file") == 1 && fits.lines.back() == "left top" ? "" : "a tree that it can hold ";
            wrong += deeper.lines.back() == "left top" ? "" : "the way back ";
            wrong += (deeper.count("file file") == 0) == stops && isStopped == stops ? "" : "a deeper tree ";
        }
        return wrong;
    });
}

TEST(TreeWalk, HoldsFewDescriptorsHoweverDeepTheTreeAndComesBackUp) {
    const TemporaryFolder folder;
    makeDeep(folder / "top", 200);
    writeFile(folder / "top/inner/side/file beside", "");
    const auto count = [] { return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator()); };
    const auto before = count();
    std::ptrdiff_t most = 0;
    Recorder recorder;
    recorder.meanwhile = [&](const std::string&) { most = std::max(most, count() - before); };
    EXPECT_TRUE(walk(recorder, folder / "top"));
    EXPECT_EQ(recorder.count("file file beside"), 1);
    EXPECT_EQ(recorder.count("left inner"), 200);
    EXPECT_EQ(recorder.lines.back(), "left top");
    EXPECT_LE(most, 16);
    EXPECT_EQ(count(), before);
}

TEST(TreeWalk, StopsBeforeTheNextEntry) {
    for (const auto& [files, stopAfter] : {std::pair(10, 4U), std::pair(2000, 100U)}) {  // few, and very many
        const TemporaryFolder folder(folderInMemory());
        makeWide(folder / "top", files);
        fs::create_directory(folder / "top/inner");
        std::stop_source stop;
        Recorder recorder;
        recorder.meanwhile = [&, count = stopAfter](const std::string&) {
            if (recorder.lines.size() == count) {
                stop.request_stop();
            }
        };
        EXPECT_FALSE(walk(recorder, folder / "top", stop.get_token()));
        EXPECT_EQ(recorder.lines.size(), stopAfter);
    }
}

TEST(TreeWalk, GivesAwayFilesOfAFolderThatHasVeryMany) {
    constexpr int fileCount = 5000;
    const TemporaryFolder folder(folderInMemory());
    makeWide(folder / "top", fileCount);
    std::vector<std::string> expected = {"enter", "enter", "file file", "left inner", "left top"};
    for (const auto& entry : fs::directory_iterator(folder / "top")) {
        expected.push_back("file " + entry.path().filename().native());
    }
    writeFile(folder / "top/inner/file", "");
    const auto parent = DirectoryHandle::open(folder.path());
    IdleWorker worker;
    Recorder recorder;
    EXPECT_TRUE(TreeWalk(recorder, *parent, {}, &worker).visit("top"));
    EXPECT_GT(worker.shares.size(), 1U);
    EXPECT_LT(recorder.lines.size(), fileCount / 4);
    EXPECT_NE(recorder.lines.back(), "left top") << "that is for who comes last";
    while (!worker.shares.empty()) {
        auto share = std::move(worker.shares.back());
        worker.shares.pop_back();
        EXPECT_TRUE(TreeWalk(recorder, *parent, {}, &worker).visitShare(std::move(share)));
    }
    EXPECT_EQ(recorder.lines.back(), "left top");
    EXPECT_THAT(recorder.lines, testing::UnorderedElementsAreArray(expected));
}

TEST(TreeWalk, GivesAwayNothingOfAFolderThatNobodyWouldFindAgain) {
    const TemporaryFolder folder;
    for (const char* name : {"top/a/file", "top/b/file", "top/c/file", "top/d/file"}) {
        writeFile(folder / name, "");
    }
    const auto visit = [&](IdleWorker& worker) {
        Recorder recorder;
        const auto parent = DirectoryHandle::open(folder.path());
        (void)TreeWalk(recorder, *parent, {}, &worker).visit("top");
        return recorder.count("file file");
    };
    IdleWorker worker;
    EXPECT_EQ(visit(worker), 2) << "the victim keeps an entry";
    EXPECT_EQ(worker.shares.size(), 1U);

    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        IdleWorker workerInChild;
        if (!refuseToTellOfDescriptors()) {
            return cannotTry("the system takes no filter of its calls");
        }
        const auto files = visit(workerInChild);
        return workerInChild.shares.empty() && files == 4
                   ? ""
                   : std::to_string(workerInChild.shares.size()) + " given away, " + std::to_string(files) + " visited";
    });
}

TEST(FolderReference, GivesHalfOfItsPendingFoldersAndKeepsSomeOfSeveral) {
    const std::pair<std::string, std::string> halves[] = {
        // what is given and what is kept
        {"a\0b\0"s, "c\0d\0"s},
        {"a\0"s, "b\0c\0"s},
        {"a\0"s, "b\0"s},
        {"a very long one\0"s, "b\0"s},
        {"a\0"s, ""},
        {"a\0"s, "a very long one\0"s},
        {"", ""},
    };
    for (const auto& [given, kept] : halves) {
        SCOPED_TRACE(testing::PrintToString(given + kept));
        auto folder = folderNamed("top", openRoot());
        folder.pendingFolders = given + kept;
        EXPECT_EQ(folder.canBeHalved(), !kept.empty());
        EXPECT_EQ(folder.takeHalf(openRoot()).pendingFolders, given);
        EXPECT_EQ(folder.pendingFolders, kept);
    }
}

TEST(StackCollection, GivesTheLastItemFirstAndIsDestroyedWithoutRecursion) {
    files::StackCollection stack;
    EXPECT_EQ(stack.topItem(), nullptr);
    EXPECT_EQ(stack.popItem(), nullptr);
    constexpr int count = 300'000;
    for (int number = 0; number < count; ++number) {
        auto handle = openRoot();
        handle.close();
        stack.pushItem(std::make_unique<StackItem>(folderNamed(std::to_string(number), std::move(handle))));
    }
    EXPECT_EQ(stack.nDepth(), count);
    EXPECT_EQ(stack.topItem()->prevItem->fsref.folder->name, std::to_string(count - 2));
    EXPECT_EQ(stack.popItem()->fsref.folder->name, std::to_string(count - 1));
    EXPECT_EQ(stack.popItem()->fsref.folder->name, std::to_string(count - 2));
    EXPECT_EQ(stack.nDepth(), count - 2);
}

}  // namespace brimvault::tests
