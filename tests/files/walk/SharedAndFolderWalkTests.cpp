#include "files/walk/SharedWalk.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <functional>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include "files/removal/Remove.h"
#include "files/trees/FolderWalk.h"
#include "files/trees/Measure.h"
#include "files/walk/TreeWalk.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"

namespace brimvault::tests {

using files::Descend;
using files::HiddenEntries;
using files::RemovalEnd;

namespace {

// Large enough for several threads to share it: a chain, deeper than a walk holds open, with folders beside each of its
// links.
std::uint64_t makeBushyChain(const fs::path& folder, int depth, int beside) {
    std::uint64_t size = 0;
    fs::path place = folder;
    for (int level = 0; level < depth; ++level) {
        for (int number = 0; number < beside; ++number) {
            writeFile(place / ("side" + std::to_string(number)) / "inner/file", "12345");
            size += 5;
        }
        place /= "chain";
    }
    writeFile(place / "end", "123");
    return size + 3;
}

// Calls back for every file, on whatever thread.
class CallingVisitor final : public files::TreeVisitor {
public:
    explicit CallingVisitor(const std::function<void()>& onFile) : onFile_(onFile) {}
    std::unique_ptr<files::TreeVisitor> another() override { return std::make_unique<CallingVisitor>(onFile_); }
    void onFile(const files::DirectoryHandle&, const char*, files::NodeKind) override { onFile_(); }
    void onFolderClosed(const files::DirectoryHandle&, const char*, int) override {}
    void onWayLost(const char*, int) override {}

private:
    const std::function<void()>& onFile_;
};

Descend answerFor(const fs::path& folder) {
    return folder.filename().native().find('3') == std::string::npos ? Descend::yes : Descend::no;
}

// The folders that are to be visited, by other means.
std::vector<fs::path> foldersBelow(const fs::path& folder, HiddenEntries hidden) {
    std::vector<fs::path> folders;
    for (const auto& entry : fs::directory_iterator(folder)) {
        const bool wanted = hidden == HiddenEntries::include || !entry.path().filename().native().starts_with('.');
        if (wanted && fs::is_directory(entry.symlink_status())) {
            folders.push_back(entry.path());
            if (answerFor(entry.path()) == Descend::yes) {
                const auto inside = foldersBelow(entry.path(), hidden);
                folders.insert(folders.end(), inside.begin(), inside.end());
            }
        }
    }
    return folders;
}

}  // namespace

TEST(SharedWalk, IsHelpedWith) {
    const TemporaryFolder folder(folderInMemory());
    (void)makeBushyChain(folder / "deep", 40, 8);
    makeWide(folder / "flat", 3000);
    const auto parent = files::DirectoryHandle::open(folder.path());
    ASSERT_TRUE(parent);
    for (const char* tree : {"deep", "flat"}) {
        // Until two threads have met in it, however the system shares out the processors.
        std::mutex mutex;
        std::set<std::thread::id> threads;
        const std::function<void()> meet = [&] {
            const std::lock_guard lock(mutex);
            threads.insert(std::this_thread::get_id());
        };
        for (int round = 0; round < 1000 && threads.size() < 2; ++round) {
            CallingVisitor visitor(meet);
            EXPECT_TRUE(files::SharedWalk(visitor, {}).visit(*parent, tree));
        }
        EXPECT_GE(threads.size(), 2U) << tree;
    }
}

TEST(SharedWalk, RemovesALargeTreeWithFewDescriptors) {
    const TemporaryFolder folder(folderInMemory());
    for (int round = 0; round < 5; ++round) {
        (void)makeBushyChain(folder / "deep", 100, 6);
        makeWide(folder / "flat", 3000);
        EXPECT_WELL_IN_CHILD([&]() -> std::string {
            limitDescriptors(32);
            const bool areGone = files::remove(folder / "deep").end == RemovalEnd::gone &&
                                 files::remove(folder / "flat").end == RemovalEnd::gone;
            return areGone ? "" : "kept";
        });
        ASSERT_TRUE(fs::is_empty(folder.path())) << "in round " << round;
    }
}

TEST(SharedWalk, RemovesAllButWhatCannotGoAndNamesIt) {
    const TemporaryFolder folder(folderInMemory());
    for (int round = 0; round < 5; ++round) {
        (void)makeBushyChain(folder / "top", 40, 8);
        const auto closed = folder / "top/chain/chain/chain/chain/chain/side3/inner";
        fs::permissions(closed, static_cast<fs::perms>(0555));
        giveToNobody(folder.path());
        if (::lchown(closed.c_str(), 0, 0) != 0) {
            GTEST_SKIP() << "a folder of another owner is for the administrator to make";
        }
        EXPECT_WELL_IN_CHILD([&]() -> std::string {
            becomeNobody();
            const auto outcome = files::remove(folder / "top");
            if (outcome.end != RemovalEnd::kept) {
                return "not kept";
            }
            const bool isRight = outcome.failure->code == EACCES && outcome.failure->path == closed / "file";
            return isRight ? "" : outcome.failure->text() + " at " + outcome.failure->path.native();
        });
        EXPECT_EQ(fingerprint(folder / "top").size(), 8U) << "the file and the folders that lead to it";
        fs::permissions(closed, fs::perms::owner_all);
        fs::remove_all(folder / "top");
    }
}

TEST(SharedWalk, EndsWhenItIsStopped) {
    const TemporaryFolder folder(folderInMemory());
    (void)makeBushyChain(folder / "top", 40, 8);
    std::stop_source stop;
    std::atomic<int> calls = 0;
    const std::function<void()> stopSoon = [&] {
        if (++calls == 100) {
            stop.request_stop();
        }
    };
    CallingVisitor visitor(stopSoon);
    const auto parent = files::DirectoryHandle::open(folder.path());
    ASSERT_TRUE(parent);
    const auto token = stop.get_token();
    EXPECT_FALSE(files::SharedWalk(visitor, token).visit(*parent, "top"));
    EXPECT_LT(calls, 321);
}

TEST(SharedWalk, MeasuresForOneAndForManyAtOnceAsOneThreadWould) {
    const TemporaryFolder folder(folderInMemory());
    const auto expected = makeBushyChain(folder / "top", 60, 8);
    for (const int count : {1, 6}) {
        std::atomic<int> wrong = 0;
        std::vector<std::jthread> callers;
        for (int caller = 0; caller < count; ++caller) {
            callers.emplace_back([&] {
                for (int round = 0; round < 10; ++round) {
                    wrong += files::measureItem(folder / "top") == expected ? 0 : 1;
                }
            });
        }
        callers.clear();
        EXPECT_EQ(wrong, 0) << count << " callers";
    }
}

TEST(FolderWalk, CallsOnceForEveryFolderBeforeThoseInsideItAndGoesInAsAnswered) {
    std::mt19937 random(1906);
    std::size_t visited = 0;
    for (int round = 0; round < 30; ++round) {
        const TemporaryFolder folder;
        const auto top = folder / "top";
        growRandomly(random, top, 3);
        makeLoops(top / "n0/loops");
        makeDeep(top / "n0", 3 * files::TreeWalk::maxOpenFolders);
        fs::create_directories(top / "n0/inner/inner/beside");
        for (const auto hidden : {HiddenEntries::skip, HiddenEntries::include}) {
            std::vector<fs::path> folders;
            EXPECT_TRUE(files::forEachFolder(top, hidden, {}, [&](const files::FoundFolder& found) {
                const auto parent = found.path.parent_path();
                EXPECT_TRUE(parent == top || std::find(folders.begin(), folders.end(), parent) != folders.end());
                EXPECT_EQ(found.parent.status()->identity, files::statusOf(parent)->identity);
                EXPECT_EQ(found.path.filename(), found.name);
                folders.push_back(found.path);
                return answerFor(found.path);
            }));
            EXPECT_THAT(folders, testing::UnorderedElementsAreArray(foldersBelow(top, hidden)));
            visited += folders.size();
        }
    }
    EXPECT_GT(visited, 2000U);
}

TEST(FolderWalk, FindsNothingInWhatIsNoFolderAndNothingMoreOnceItIsStopped) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "12345");
    fs::create_directories(folder / "real/inner/innermost");
    fs::create_directory_symlink("real", folder / "link");
    int calls = 0;
    const auto walk = [&](const char* name, std::stop_source stop, int callsToGo) {
        return files::forEachFolder(folder / name, HiddenEntries::include, stop.get_token(), [&](const auto&) {
            if (++calls == callsToGo) {
                stop.request_stop();
            }
            return Descend::yes;
        });
    };
    for (const char* name : {"file", "link", "missing", "missing/missing"}) {
        EXPECT_TRUE(walk(name, std::stop_source(), 0));
    }
    EXPECT_EQ(calls, 0);
    EXPECT_FALSE(walk("real", std::stop_source(), 1));
    EXPECT_EQ(calls, 1);
}

}  // namespace brimvault::tests
