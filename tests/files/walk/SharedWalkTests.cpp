// Trees that several threads visit at once.

#include "files/walk/SharedWalk.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <functional>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include "files/trees/Measure.h"
#include "files/trees/Remove.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using files::RemovalEnd;
namespace fs = std::filesystem;

namespace {

// Large enough to be shared: a chain, deeper than a walk holds open, with folders beside each of its links.
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

}  // namespace

TEST(SharedWalk, MeasuresALargeTreeAsOneThreadWould) {
    const TemporaryFolder folder;
    const auto expected = makeBushyChain(folder / "top", 60, 8);
    for (int round = 0; round < 20; ++round) {
        ASSERT_EQ(files::measureItem(folder / "top"), expected) << "in round " << round;
    }
}

TEST(SharedWalk, IsHelpedWith) {
    const TemporaryFolder folder;
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
    const TemporaryFolder folder;
    (void)makeBushyChain(folder / "top", 100, 6);
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        limitDescriptors(32);
        const auto outcome = files::remove(folder / "top");
        return outcome.end == RemovalEnd::gone ? "" : outcome.failure->text() + " at " + outcome.failure->path.native();
    });
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(SharedWalk, RemovesALargeFlatFolder) {
    const TemporaryFolder folder;
    for (int round = 0; round < 5; ++round) {
        makeWide(folder / "top", 3000);
        ASSERT_EQ(files::remove(folder / "top").end, RemovalEnd::gone) << "in round " << round;
        ASSERT_FALSE(fs::exists(folder / "top"));
    }
}

TEST(SharedWalk, RemovesAllButWhatCannotGoAndNamesIt) {
    const TemporaryFolder folder;
    for (int round = 0; round < 5; ++round) {
        (void)makeBushyChain(folder / "top", 40, 8);
        const auto closed = folder / "top/chain/chain/chain/chain/chain/side3/inner";
        fs::permissions(closed, fs::perms::owner_read | fs::perms::owner_exec);
        giveToNobody(folder.path());
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
    const TemporaryFolder folder;
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

TEST(SharedWalk, ServesManyAtOnce) {
    const TemporaryFolder folder;
    const auto expected = makeBushyChain(folder / "top", 40, 8);
    std::atomic<int> wrong = 0;
    {
        std::vector<std::jthread> callers;
        for (int caller = 0; caller < 6; ++caller) {
            callers.emplace_back([&] {
                for (int round = 0; round < 5; ++round) {
                    wrong += files::measureItem(folder / "top") == expected ? 0 : 1;
                }
            });
        }
    }
    EXPECT_EQ(wrong, 0);
}

}  // namespace brimvault::tests
