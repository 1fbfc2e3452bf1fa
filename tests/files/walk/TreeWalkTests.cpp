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
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using files::DirectoryHandle;
using files::TreeWalk;
namespace fs = std::filesystem;

namespace {

// Keeps a line for everything it is told, and does what a test has it do on the way.
class Recorder final : public files::TreeVisitor {
public:
    void onFolderEntered(const DirectoryHandle&) override { tell("enter"); }
    void onFile(const DirectoryHandle&, const char* name, files::NodeKind) override {
        tell(std::string("file ") + name);
    }
    void onFolderLeft(const DirectoryHandle&, const files::VisitedFolder& folder) override {
        tell("left " + folder.name);
    }
    void onFolderClosed(const DirectoryHandle&, const char* name, int code) override {
        tell(std::string("closed ") + name + " " + std::to_string(code));
    }
    void onWayLost(const char* name, int code) override {
        tell(std::string("lost ") + name + " " + std::to_string(code));
    }

    [[nodiscard]] files::WayBack wayBack() const override { return way; }

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
    void give(files::FolderReference share) override { shares.push_back(std::move(share)); }
    void onLargeTree() override {}

    std::vector<files::FolderReference> shares;
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

TEST(TreeWalk, EntersNoLink) {
    const TemporaryFolder folder;
    makeLinks(folder / "top", folder / "outside");
    Recorder recorder;
    EXPECT_TRUE(walk(recorder, folder / "top"));
    EXPECT_THAT(recorder.lines, testing::UnorderedElementsAre("enter", "file real", "file to file", "file to folder",
                                                              "file to nothing", "left top"));
}

TEST(TreeWalk, TakesAFolderThatBecameALinkForAFile) {
    const TemporaryFolder folder;
    writeFile(folder / "outside/precious", "");
    fs::create_directories(folder / "top/inner");
    writeFile(folder / "top/a", "");
    Recorder recorder;
    recorder.meanwhile = [&](const std::string& line) {
        if (line == "file a") {
            fs::rename(folder / "top/inner", folder / "away");
            fs::create_directory_symlink(folder / "outside", folder / "top/inner");
        }
    };
    EXPECT_TRUE(walk(recorder, folder / "top"));
    EXPECT_THAT(recorder.lines, testing::ElementsAre("enter", "file a", "file inner", "left top"));
}

TEST(TreeWalk, TellsOfAFolderThatVanishedSinceItWasListed) {
    const TemporaryFolder folder;
    fs::create_directories(folder / "top/inner");
    writeFile(folder / "top/a", "");
    Recorder recorder;
    recorder.meanwhile = [&](const std::string& line) {
        if (line == "file a") {
            fs::remove(folder / "top/inner");
        }
    };
    EXPECT_TRUE(walk(recorder, folder / "top"));
    EXPECT_THAT(recorder.lines,
                testing::ElementsAre("enter", "file a", "closed inner " + std::to_string(ENOENT), "left top"));
}

TEST(TreeWalk, EndsWhereTheWayBackIsLost) {
    const TemporaryFolder folder;
    makeDeep(folder / "top", 3 * TreeWalk::heldFolders);
    writeFile(folder / "top/inner/before/file above", "");
    fs::create_directory(folder / "elsewhere");
    Recorder recorder;
    recorder.meanwhile = [&](const std::string& line) {
        if (line == "file file") {  // at the bottom
            fs::rename(folder / "top/inner/inner/inner", folder / "elsewhere/inner");
        }
    };
    EXPECT_TRUE(walk(recorder, folder / "top"));
    EXPECT_EQ(recorder.lines.back(), "lost inner " + std::to_string(ESTALE));
    EXPECT_THAT(recorder.lines, testing::Not(testing::Contains("left top")));
}

// The number of a folder that was removed is given to the next that is made.
TEST(TreeWalk, TakesNoNewFolderOfTheSameNumberForOneThatItLeftBehind) {
    const TemporaryFolder folder;
    makeDeep(folder / "top", 3 * TreeWalk::heldFolders);
    const auto passed = folder / "top/inner/inner";
    auto other = folder / "other";
    Recorder recorder;
    recorder.meanwhile = [&](const std::string& line) {
        if (line == "file file") {  // at the bottom
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
        }
    };
    EXPECT_TRUE(walk(recorder, folder / "top"));
    if (fs::exists(folder / "below")) {
        GTEST_SKIP() << "the file system gives no number twice";
    }
    EXPECT_EQ(recorder.lines.back(), "lost inner " + std::to_string(ESTALE));
    const auto lefts = std::count(recorder.lines.begin(), recorder.lines.end(), "left inner");
    const auto enters = std::count(recorder.lines.begin(), recorder.lines.end(), "enter");
    EXPECT_EQ(enters - lefts, 4) << "the folder, the two that hold it, and the one that was moved";
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
        makeDeep(folder / "fits/top", TreeWalk::maxFoldersHeld - 10);
        makeDeep(folder / "deeper/top", TreeWalk::maxFoldersHeld + 10);
        std::string wrong;
        for (const auto way : {files::WayBack::byNumber, files::WayBack::byTimeOfBirth}) {
            Recorder fits;
            Recorder deeper;
            fits.way = deeper.way = way;
            (void)walk(fits, folder / "fits/top");
            (void)walk(deeper, folder / "deeper/top");
            const auto reached = [](const Recorder& recorder) {
                return std::count(recorder.lines.begin(), recorder.lines.end(), "file file");
            };
            const auto closed = "closed inner " + std::to_string(EMFILE);
            const bool stops = std::count(deeper.lines.begin(), deeper.lines.end(), closed) == 1;
            wrong += reached(fits) == 1 && fits.lines.back() == "left top" ? "" : "a tree that it can hold ";
            wrong += deeper.lines.back() == "left top" ? "" : "the way back ";
            wrong += (reached(deeper) == 0) == (way == files::WayBack::byTimeOfBirth) && stops == (reached(deeper) == 0)
                         ? ""
                         : "a deeper tree ";
        }
        return wrong;
    });
}

TEST(TreeWalk, ComesBackUpThroughFoldersItHadClosed) {
    const TemporaryFolder folder;
    makeDeep(folder / "top", 3 * TreeWalk::heldFolders);
    writeFile(folder / "top/inner/side/file beside", "");
    Recorder recorder;
    EXPECT_TRUE(walk(recorder, folder / "top"));
    EXPECT_THAT(recorder.lines, testing::Contains("file file beside"));
    EXPECT_EQ(recorder.lines.back(), "left top");
}

TEST(TreeWalk, HoldsFewDescriptorsHoweverDeepTheTree) {
    const TemporaryFolder folder;
    makeDeep(folder / "top", 200);
    const auto count = [] { return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator()); };
    const auto before = count();
    std::ptrdiff_t most = 0;
    Recorder recorder;
    recorder.meanwhile = [&](const std::string&) { most = std::max(most, count() - before); };
    EXPECT_TRUE(walk(recorder, folder / "top"));
    EXPECT_LE(most, 16);
    EXPECT_EQ(count(), before);
}

TEST(TreeWalk, StopsBeforeTheNextEntry) {
    const TemporaryFolder folder;
    makeWide(folder / "top", 10);
    fs::create_directory(folder / "top/inner");
    std::stop_source stop;
    Recorder recorder;
    recorder.meanwhile = [&](const std::string&) {
        if (recorder.lines.size() == 4) {
            stop.request_stop();
        }
    };
    EXPECT_FALSE(walk(recorder, folder / "top", stop.get_token()));
    EXPECT_EQ(recorder.lines.size(), 4U);
}

TEST(TreeWalk, GivesAwayFilesOfAFolderThatHasVeryMany) {
    constexpr int fileCount = 5000;
    const TemporaryFolder folder;
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

TEST(TreeWalk, StopsAmongVeryManyFiles) {
    const TemporaryFolder folder;
    makeWide(folder / "top", 2000);
    std::stop_source stop;
    Recorder recorder;
    recorder.meanwhile = [&](const std::string&) {
        if (recorder.lines.size() == 100) {
            stop.request_stop();
        }
    };
    EXPECT_FALSE(walk(recorder, folder / "top", stop.get_token()));
    EXPECT_EQ(recorder.lines.size(), 100U);
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
        return std::count(recorder.lines.begin(), recorder.lines.end(), "file file");
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

}  // namespace brimvault::tests
