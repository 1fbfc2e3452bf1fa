// The caller's own folders whose modes refuse their removal.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <iterator>
#include <map>
#include <string>
#include <system_error>
#include <thread>

#include "files/removal/Remove.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"

namespace brimvault::tests {

using files::RemovalEnd;

namespace {

using Modes = std::map<fs::path, unsigned>;

constexpr unsigned stranger = 65533;
constexpr unsigned allBits = 07777;
constexpr unsigned modes[] = {0555, 0000, 0300, 0400, 0600, 01555, 0111};

void setMode(const fs::path& path, unsigned mode) {
    if (::chmod(path.c_str(), mode) != 0) {
        throw std::system_error(errno, std::generic_category(), path.native());
    }
}

// Of all folders in a tree and of the tree itself; looked at by the administrator.
Modes modesOf(const fs::path& tree) {
    Modes found;
    const auto note = [&](const fs::path& path) {
        struct stat status {};
        if (::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) {
            found[path.lexically_relative(tree)] = status.st_mode & allBits;
        }
    };
    note(tree);
    for (const auto& entry : fs::recursive_directory_iterator(tree)) {
        note(entry.path());
    }
    return found;
}

// Whether each folder that is left has the mode that it had.
bool areAsBefore(const Modes& left, const Modes& before) {
    return std::all_of(left.begin(), left.end(), [&](const auto& folder) {
        return before.contains(folder.first) && before.at(folder.first) == folder.second;
    });
}

// In a folder that is the administrator's, "item" with much in it, all of it the user's and of mode 555.
class OwnFolders : public testing::Test {
protected:
    void SetUp() override {
        if (::getuid() != 0) {
            GTEST_SKIP() << "folders of several owners are for the administrator to make";
        }
        fs::permissions(folder_.path(), static_cast<fs::perms>(0755));
        fs::create_directories(holder_);
    }

    // A folder of each mode, in folders of each mode, with a file in each.
    void makeTree() const {
        for (const unsigned outer : modes) {
            for (const unsigned inner : modes) {
                writeFile(item_ / std::to_string(outer) / std::to_string(inner) / "inner/file", "1");
                writeFile(item_ / std::to_string(outer) / std::to_string(inner) / "file", "1");
            }
        }
    }
    // After all is made: modes as the names say, 555 elsewhere.
    void close() const {
        giveToNobody(item_);
        for (const auto& entry : fs::recursive_directory_iterator(item_)) {
            if (entry.is_directory() && !entry.is_symlink()) {
                const auto name = entry.path().filename().native();
                const bool isMode = name.find_first_not_of("0123456789") == std::string::npos;
                setMode(entry.path(), isMode ? static_cast<unsigned>(std::stoul(name)) : 0555);
            }
        }
        setMode(item_, 0555);
    }
    static void giveToStranger(const fs::path& path) {
        ASSERT_EQ(::lchown(path.c_str(), stranger, stranger), 0);
        setMode(path, 0755);
    }

    // By the user.
    [[nodiscard]] std::string removeItem() const {
        return inChildProcess([this]() -> std::string {
            becomeNobody();
            const auto outcome = files::remove(item_);
            return outcome.failure
                       ? outcome.failure->path.lexically_relative(item_).native() + ": " + outcome.failure->text()
                       : "";
        });
    }

    const TemporaryFolder folder_{folderInMemory()};
    const fs::path holder_ = folder_ / "holder";
    const fs::path item_ = holder_ / "item";
};

}  // namespace

TEST_F(OwnFolders, GoWhateverTheirModes) {
    for (const unsigned mode : modes) {
        makeTree();
        close();
        giveToNobody(folder_.path());
        setMode(item_, mode);
        setMode(holder_, 0700);
        EXPECT_EQ(removeItem(), "") << mode;
        EXPECT_FALSE(fs::exists(item_));
    }
}

TEST_F(OwnFolders, GetTheirModesBackWhereSomethingStays) {
    makeTree();
    const fs::path kept[] = {item_ / "365/364/others/kept", item_ / "0/73/others/kept", item_ / "192/0/others/kept"};
    for (const auto& file : kept) {
        writeFile(file, "precious");
    }
    close();
    for (const auto& file : kept) {
        giveToStranger(file.parent_path());
    }
    setMode(holder_, 0711);
    const auto before = modesOf(holder_);
    EXPECT_NE(removeItem().find("/others"), std::string::npos);
    const auto left = modesOf(holder_);
    EXPECT_EQ(left.size(), 2 + 3 * 3U) << "all else has gone";
    EXPECT_TRUE(areAsBefore(left, before)) << testing::PrintToString(left);
    for (const auto& file : kept) {
        EXPECT_TRUE(fs::exists(file)) << file;
        EXPECT_FALSE(fs::exists(file.parent_path().parent_path() / "file"));
    }
}

// The folder that holds it refuses the item itself: that one is not the user's, or lies outside of what is to go.
TEST_F(OwnFolders, AreEmptiedInAFolderThatKeepsThemAndIsLeftAsItIs) {
    for (const bool isOwn : {false, true}) {
        makeTree();
        close();
        if (isOwn) {
            giveToNobody(holder_);
        }
        setMode(holder_, 0555);
        EXPECT_EQ(removeItem(), ".: Permission denied");
        EXPECT_EQ(modesOf(holder_), (Modes{{".", 0555}, {"item", 0555}}));
        setMode(holder_, 0755);
    }
}

// The system would drop the bit when the mode is put back.
TEST_F(OwnFolders, OfAForeignGroupKeepTheBitThatHandsItOn) {
    writeFile(item_ / "inner/file", "1");
    close();
    ASSERT_EQ(::lchown((item_ / "inner").c_str(), 65534, stranger), 0);
    setMode(item_ / "inner", 02555);
    EXPECT_EQ(removeItem(), "inner/file: Permission denied");
    EXPECT_EQ(modesOf(item_), (Modes{{".", 0555}, {"inner", 02555}}));
}

TEST_F(OwnFolders, AreSharedBySeveralWorkers) {
    constexpr int count = 6000;
    makeWide(item_ / "wide", count);
    for (int number = 0; number < count / 4; ++number) {
        writeFile(item_ / ("a" + std::to_string(number % 40)) / ("b" + std::to_string(number)) / "inner/file", "1");
    }
    writeFile(item_ / "wide/others/kept", "precious");
    writeFile(item_ / "a7/others/kept", "precious");
    close();
    giveToStranger(item_ / "wide/others");
    giveToStranger(item_ / "a7/others");
    const auto before = modesOf(item_);
    EXPECT_NE(removeItem(), "");
    const auto left = modesOf(item_);
    EXPECT_EQ(left.size(), 5U);
    EXPECT_TRUE(areAsBefore(left, before)) << testing::PrintToString(left);
    EXPECT_FALSE(fs::exists(item_ / "wide/1"));
}

// Folders inside each other, which are closed to their owner again from within.
TEST_F(OwnFolders, GetTheirModesBackWhenItIsStopped) {
    constexpr int levels = 60;
    int cancelled = 0;
    for (unsigned round = 0; round < 10; ++round) {
        removeTree(item_);
        makeDeep(item_, levels);
        auto folder = item_;
        for (int level = 0; level < levels; ++level, folder /= "inner") {
            writeFile(folder / "file", "1");
            writeFile(folder / "other" / "file", "1");
        }
        close();
        folder = item_;
        for (int level = 0; level < levels; ++level, folder /= "inner") {
            setMode(folder, modes[static_cast<unsigned>(level) % std::size(modes)]);
        }
        const auto before = modesOf(item_);
        const auto answer = inChildProcess([&]() -> std::string {
            becomeNobody();
            std::stop_source stop;
            const std::jthread stopper([&, first = files::entriesRemoved()] {
                while (files::entriesRemoved() < first + std::uint64_t{5} * (round + 1)) {
                    std::this_thread::yield();
                }
                stop.request_stop();
            });
            return files::remove(item_, stop.get_token()).end == RemovalEnd::cancelled ? "cancelled" : "";
        });
        cancelled += answer == "cancelled" ? 1 : 0;
        if (fs::exists(item_)) {
            EXPECT_TRUE(areAsBefore(modesOf(item_), before));
        }
    }
    EXPECT_GT(cancelled, 0) << "nothing was tested";
}

}  // namespace brimvault::tests
