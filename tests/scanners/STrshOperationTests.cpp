#include "scanners/STrshOperation.h"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/mount.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fstream>
#include <iterator>
#include <thread>

#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"
#include "support/ScanRun.h"
#include "support/SubstituteHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using engine::ItemArray;
using scanners::STrshOperation;
namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

constexpr auto neverInATest = 20s;

void giveTo(const fs::path& path, unsigned user) { EXPECT_EQ(::lchown(path.c_str(), user, user), 0); }

class TrashScan : public testing::Test {
protected:
    TrashScan() {
        fs::create_directories(home_);
        fs::create_directories(root_);
    }

    // With the program's own script, or with one of these lines.
    [[nodiscard]] std::shared_ptr<STrshOperation> operation(const std::string& script = {},
                                                            std::chrono::milliseconds limit = neverInATest) {
        STrshOperation::Sources sources{.scriptLimit = limit, .finder = finder_};
        if (!script.empty()) {
            writeFile(folder_ / "script", script);
            sources.script = QString::fromStdString((folder_ / "script").native());
        }
        return std::make_shared<STrshOperation>(sources);
    }

    std::vector<fs::path> scan(const std::string& script = {}, std::chrono::milliseconds limit = neverInATest) {
        const auto scan = operation(script, limit);
        std::vector<fs::path> found;
        sizes_.clear();
        for (const auto& item : runScan(scan).items) {
            found.push_back(item->pfpath().empty() ? item->pfname() : item->pfpath());
            sizes_.push_back(item->pfSize());
        }
        expectedCount_ = scan->nTopLevelItemsCount();
        return found;
    }

    // A script that prints these entries, each with its zero byte.
    [[nodiscard]] std::string printing(const std::vector<std::string>& entries) {
        std::string list;
        for (const auto& entry : entries) {
            list += entry + '\0';
        }
        const auto file = folder_ / ("list" + std::to_string(++lists_));
        writeFile(file, list);
        return "cat '" + file.native() + "'\n";
    }

    // A killed process needs a moment.
    [[nodiscard]] static bool isGoneSoon(pid_t process) {
        std::string text;
        for (const auto deadline = std::chrono::steady_clock::now() + 5s;
             std::chrono::steady_clock::now() < deadline;) {
            std::ifstream status("/proc/" + std::to_string(process) + "/stat");
            text.assign(std::istreambuf_iterator<char>(status), {});
            if (text.empty() || text.find(") Z") != std::string::npos) {
                return process > 0;
            }
        }
        return false;
    }

    // The number that a script has written; it is waited for.
    [[nodiscard]] static pid_t processFrom(const fs::path& file) {
        pid_t process = 0;
        for (const auto deadline = std::chrono::steady_clock::now() + neverInATest;
             process == 0 && std::chrono::steady_clock::now() < deadline;) {
            std::ifstream stream(file);
            std::string line;
            if (std::getline(stream, line) && !stream.eof()) {
                process = std::stoi(line);
            }
        }
        return process;
    }

    TemporaryFolder folder_;
    const fs::path home_ = folder_ / "home";
    const fs::path root_ = folder_ / "root";
    const fs::path trash_ = home_ / ".local/share/Trash/files";
    const std::string user_ = std::to_string(::getuid());
    const SubstituteHome system_{home_, {{"BRIMVAULT_TRIAL_ROOT", root_}}};
    platform::FinderPreferences finder_;
    int lists_ = 0;
    std::vector<quint64> sizes_;
    qint64 expectedCount_ = -1;
};

using testing::ElementsAre;
using testing::UnorderedElementsAre;

}  // namespace

TEST_F(TrashScan, FindsTheTrashOfTheHomeFolderWithEveryName) {
    std::vector<fs::path> expected;
    for (const auto& name : oddNames()) {
        for (const auto& folder : {trash_, home_ / ".Trash"}) {
            writeFile(folder / name / "inner", "12345");
            if (name.front() != '.') {
                expected.push_back(folder / name);
            }
        }
    }
    fs::create_directory_symlink("/", trash_ / "link");
    expected.push_back(trash_ / "link");
    EXPECT_THAT(scan(), testing::UnorderedElementsAreArray(expected));
    EXPECT_EQ(expectedCount_, static_cast<qint64>(oddNames().size() * 2 + 1));
    EXPECT_EQ(std::count(sizes_.begin(), sizes_.end(), 5U), static_cast<std::ptrdiff_t>(expected.size() - 1));
}

TEST_F(TrashScan, LooksWhereTheVariableSaysForTheDesktopsTrash) {
    writeFile(trash_ / "elsewhere", "12345");
    writeFile(folder_ / "data/Trash/files/here", "12345");
    fs::create_directory_symlink("data", folder_ / "link");
    const SubstituteHome system(home_, {{"BRIMVAULT_TRIAL_ROOT", root_}, {"XDG_DATA_HOME", folder_ / "link"}});
    EXPECT_THAT(scan(), ElementsAre(folder_ / "data/Trash/files/here"));
}

TEST_F(TrashScan, TrustsOnlyTheTrashFoldersOfVolumesThatNobodyElseCanHaveMade) {
    const auto volume = [&](const char* name) { return folder_ / "volumes" / name; };
    const auto makeShared = [&](const char* name) {
        writeFile(volume(name) / ".Trash" / user_ / "files/item", "12345");
        fs::permissions(volume(name) / ".Trash", fs::perms::sticky_bit, fs::perm_options::add);
    };
    makeShared("good");
    makeShared("not sticky");
    fs::permissions(volume("not sticky") / ".Trash", fs::perms::sticky_bit, fs::perm_options::remove);
    makeShared("shared elsewhere");
    fs::create_directories(volume("linked"));
    fs::rename(volume("shared elsewhere") / ".Trash", volume("linked") / "target");
    fs::create_directory_symlink("target", volume("linked") / ".Trash");
    makeShared("linked user");
    fs::rename(volume("linked user") / ".Trash" / user_, volume("linked user") / "target");
    fs::create_directory_symlink("../target", volume("linked user") / ".Trash" / user_);
    writeFile(volume("own") / (".Trash-" + user_) / "files/item", "12345");
    writeFile(volume("linked own") / "target/files/item", "12345");
    fs::create_directory_symlink("target", volume("linked own") / (".Trash-" + user_));
    writeFile(volume("linked files") / (".Trash-" + user_) / "target/item", "12345");
    fs::create_directory_symlink("target", volume("linked files") / (".Trash-" + user_) / "files");
    writeFile(volume("another's") / ".Trash-4711/files/item", "12345");
    std::vector<fs::path> volumes;
    for (const auto& entry : fs::directory_iterator(folder_ / "volumes")) {
        volumes.push_back(entry.path());
    }
    if (::getuid() == 0) {  // what has the user's name and is not the user's
        makeShared("given");
        giveTo(volume("given") / ".Trash" / user_, 4711);
        writeFile(volume("given") / (".Trash-" + user_) / "files/item", "12345");
        giveTo(volume("given") / (".Trash-" + user_), 4711);
        volumes.push_back(volume("given"));
    }
    writeMountTable(root_, volumes);
    EXPECT_THAT(scan(), UnorderedElementsAre(volume("good") / ".Trash" / user_ / "files/item",
                                             volume("own") / (".Trash-" + user_) / "files/item"));
}

TEST_F(TrashScan, ListsAVolumeOnceHoweverOftenItIsMounted) {
    const fs::path odd = folder_ / "a b\tc\nd\\040";
    writeFile(odd / (".Trash-" + user_) / "files/line\nbreak", "12345");
    fs::create_directory_symlink(odd, folder_ / "again");
    writeMountTable(root_, {odd, odd, folder_ / "again", folder_ / "missing"});
    EXPECT_THAT(scan(), ElementsAre(odd / (".Trash-" + user_) / "files/line\nbreak"));
}

TEST_F(TrashScan, TakesTheHomeFoldersTrashForTheSharedOneWhereItIs) {
    writeFile(home_ / ".Trash" / user_ / "files/item", "12345");
    fs::permissions(home_ / ".Trash", fs::perms::sticky_bit, fs::perm_options::add);
    writeMountTable(root_, {home_});
    EXPECT_THAT(scan(), ElementsAre(home_ / ".Trash" / user_ / "files/item"));
}

TEST_F(TrashScan, FindsTheTrashOfMountedVolumes) {
    const std::vector<fs::path> volumes = {folder_ / "first", folder_ / "second volume\n*"};
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        if (const auto reason = keepMountsPrivate(); !reason.empty()) {
            return cannotTry(reason);
        }
        const auto user = std::to_string(::getuid());  // another one where private mounts need a namespace of users
        std::vector<fs::path> expected;
        for (const auto& volume : volumes) {
            fs::create_directories(volume);
            if (::mount("tmpfs", volume.c_str(), "tmpfs", 0, "size=1m") != 0) {
                return cannotTry("no tmpfs: " + std::generic_category().message(errno));
            }
            for (const auto& name : oddNames()) {
                if (name.front() != '.') {
                    for (const auto& trash : {volume / ".Trash" / user, volume / (".Trash-" + user)}) {
                        writeFile(trash / "files" / name, "12345");
                        expected.push_back(trash / "files" / name);
                    }
                }
            }
            fs::permissions(volume / ".Trash", fs::perms::sticky_bit, fs::perm_options::add);
        }
        // The kernel's own lines of these volumes, and of no other.
        std::ifstream table("/proc/self/mountinfo");
        std::string lines;
        for (std::string line; std::getline(table, line);) {
            lines += line.find(folder_.path()) == std::string::npos ? "" : line + "\n";
        }
        writeFile(root_ / "proc/self/mountinfo", lines);
        auto found = scan();
        std::sort(found.begin(), found.end());
        std::sort(expected.begin(), expected.end());
        if (found != expected) {
            return "found " + std::to_string(found.size()) + " of " + std::to_string(expected.size());
        }
        fs::rename(volumes[0] / ".Trash", volumes[0] / "elsewhere");
        fs::create_directory_symlink("elsewhere", volumes[0] / ".Trash");
        const auto without = scan().size();
        for (const auto& volume : volumes) {
            (void)::umount2(volume.c_str(), MNT_DETACH);
        }
        return without == expected.size() / 4 * 3 ? "" : "followed a link in the place of .Trash";
    });
}

TEST_F(TrashScan, ShowsHiddenItemsOnlyWhereTheFileBrowserDoes) {
    writeFile(trash_ / ".hidden", "12345");
    writeFile(home_ / ".Trash/.hidden", "12345");
    writeFile(home_ / ".Trash/shown", "12345");
    const auto finderSays = [&](const char* value) {
        writeFile(home_ / "Library/Preferences/com.apple.finder.plist",
                  std::string("<plist><dict><key>AppleShowAllFiles</key>") + value + "</dict></plist>");
    };
    EXPECT_THAT(scan(), ElementsAre(home_ / ".Trash/shown"));
    EXPECT_EQ(expectedCount_, 3);
    EXPECT_THAT(scan("exit 1"), ElementsAre("shown"));
    finderSays("<true/>");
    EXPECT_THAT(scan(), UnorderedElementsAre(trash_ / ".hidden", home_ / ".Trash/.hidden", home_ / ".Trash/shown"));
    EXPECT_THAT(scan("exit 1"), UnorderedElementsAre("shown", ".hidden"));
    EXPECT_EQ(expectedCount_, 1);  // hidden ones are never counted here
    finderSays("<false/>");
    EXPECT_THAT(scan("exit 1"), ElementsAre("shown"));
}

TEST_F(TrashScan, ListsTheHomeFoldersTrashWhereTheScriptIsOfNoUse) {
    writeFile(home_ / ".Trash/item/file", "12345");
    const auto inTrash = (trash_ / "other").native();
    const std::vector<std::string> useless = {
        "exit 0",
        "exit 3",
        "kill -9 $$",
        "(syntax",
        printing({inTrash, "1"}) + "exit 1",
        printing({inTrash}),
        printing({"garbage", "1", "", "", "./relative", "5"}),
        printing({"", inTrash, "7"}),
        printing({home_ / "Documents", "5", home_ / ".Trash", "5", "/", "5"}),
        printing({trash_ / "../files/other", "5", trash_ / ".", "5", trash_ / "a/b", "5", inTrash + "/", "5"}),
        printing({folder_ / ".Trash-4712/files/other", "5"}),
        "head -c 100000 /dev/urandom",
        "printf '%s' '" + inTrash + "'"};
    for (const auto& script : useless) {
        EXPECT_THAT(scan(script), ElementsAre("item")) << script;
        EXPECT_THAT(sizes_, ElementsAre(5U)) << script;
        EXPECT_EQ(expectedCount_, 1) << script;
    }
    const auto missing = std::make_shared<STrshOperation>(
        STrshOperation::Sources{.script = QStringLiteral(":/scripts/none"), .finder = finder_});
    const auto items = runScan(missing).items;
    ASSERT_EQ(items.size(), 1);
    EXPECT_TRUE(items[0]->pfpath().empty());
    EXPECT_TRUE(items[0]->ppbChecked());
}

TEST_F(TrashScan, ListsAStickyTrashOfTheHomeFolderButNoFoldersOfUsersInIt) {
    writeFile(home_ / ".Trash/item/file", "12345");
    writeFile(home_ / ".Trash/4711/files/others", "1234567");
    fs::permissions(home_ / ".Trash", fs::perms::sticky_bit, fs::perm_options::add);
    EXPECT_THAT(scan(), ElementsAre("item"));
    EXPECT_EQ(expectedCount_, 2);
    fs::permissions(home_ / ".Trash", fs::perms::sticky_bit, fs::perm_options::remove);
    EXPECT_THAT(scan("exit 0"), testing::UnorderedElementsAre("item", "4711"));
}

TEST_F(TrashScan, ReadsPairsUntilOneIsNotWhole) {
    for (const char* name : {"a", "b", "c"}) {
        writeFile(trash_ / name, "12345");
    }
    EXPECT_THAT(scan(printing({trash_ / "a", "70", "not in the trash", "8", trash_ / "b", "80", trash_ / "c"})),
                ElementsAre(trash_ / "a", trash_ / "b"));
    EXPECT_THAT(sizes_, ElementsAre(70U, 80U));
    EXPECT_EQ(expectedCount_, 2);
}

TEST_F(TrashScan, MeasuresWhatTheScriptGivesNoNumberFor) {
    writeFile(trash_ / "a", "12345");
    for (const char* text : {"", "0", "-7", "many", "12 bytes", "0x10", " 12", "1e3", "9223372036854775808"}) {
        EXPECT_THAT(scan(printing({trash_ / "a", text})), ElementsAre(trash_ / "a"));
        EXPECT_THAT(sizes_, ElementsAre(5U)) << text;
    }
    EXPECT_THAT(scan(printing({trash_ / "a", "9223372036854775807"})), ElementsAre(trash_ / "a"));
    EXPECT_THAT(sizes_, ElementsAre(9'223'372'036'854'775'807U));
}

TEST_F(TrashScan, LooksInEveryFolderForWhatWasToldOfTwiceUnderOnePath) {
    const auto own = folder_ / "volume" / (".Trash-" + user_) / "files";
    for (const auto& folder : {trash_, own, home_ / ".Trash"}) {
        writeFile(folder / "twice", "12345");
        writeFile(folder / "once", "12345");
    }
    // The third folder is not mentioned, and the second one's "once" neither.
    EXPECT_THAT(scan(printing({trash_ / "twice", "7", trash_ / "once", "8", trash_ / "twice", "9", own / "x", "1"})),
                UnorderedElementsAre(trash_ / "twice", trash_ / "once", own / "twice", own / "x"));
    EXPECT_EQ(expectedCount_, 4);
    EXPECT_THAT(sizes_, UnorderedElementsAre(9U, 8U, 5U, 1U));
}

TEST_F(TrashScan, EndsAScriptThatTakesTooLongWithAllThatItHasStarted) {
    writeFile(home_ / ".Trash/item", "12345");
    const auto started = folder_ / "started";
    const std::string startAndTell = "sleep 1000 & echo $! >'" + started.native() + "'\n";
    for (const auto& script : {startAndTell + "wait", startAndTell + "trap '' TERM INT HUP; while :; do :; done",
                               startAndTell + "exec >&- 2>&-; wait", startAndTell + "yes"}) {
        fs::remove(started);
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_THAT(scan(script, 500ms), ElementsAre("item")) << script;
        EXPECT_LT(std::chrono::steady_clock::now() - begin, neverInATest) << script;
        EXPECT_TRUE(isGoneSoon(processFrom(started))) << script;
    }
}

TEST_F(TrashScan, KeepsWhatWasToldBeforeAVolumeStoppedAnswering) {
    writeFile(trash_ / "item", "12345");
    EXPECT_THAT(scan(printing({trash_ / "item", "5", trash_ / "half"}) + "sleep 1000", 500ms),
                ElementsAre(trash_ / "item"));
}

TEST_F(TrashScan, WaitsForNothingThatAScriptLeavesBehind) {
    writeFile(trash_ / "item", "12345");
    const auto started = folder_ / "started";
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_THAT(scan(printing({trash_ / "item", "7"}) + "sleep 1000 & echo $! >'" + started.native() + "'", 600s),
                ElementsAre(trash_ / "item"));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, neverInATest);
    (void)::kill(processFrom(started), SIGKILL);
}

TEST_F(TrashScan, EndsAScriptThatPrintsWithoutEnd) {
    writeFile(home_ / ".Trash/item", "12345");
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_THAT(scan("cat /dev/zero", 600s), ElementsAre("item"));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 60s);
}

TEST_F(TrashScan, IsCancelledWhileTheScriptHangs) {
    makeWide(home_ / ".Trash", 5);
    const auto started = folder_ / "started";
    const auto hanging = operation("sleep 1000 & echo $! >'" + started.native() + "'; wait", 600s);
    const auto begin = std::chrono::steady_clock::now();
    pid_t child = 0;
    std::jthread user([&] {
        child = processFrom(started);
        hanging->cancel();
    });
    EXPECT_TRUE(runScan(hanging).items.isEmpty());
    EXPECT_LT(std::chrono::steady_clock::now() - begin, neverInATest);
    user.join();
    EXPECT_TRUE(isGoneSoon(child));
}

TEST_F(TrashScan, MovesThePercentOnWithWhatIsHidden) {
    for (const char* name : {".a", ".b", "c", "d", "e"}) {  // in the order of their names
        writeFile(trash_ / name, "12345");
    }
    EXPECT_EQ(runScan(operation()).percents, (std::vector<qint64>{80, 100}));
}

TEST_F(TrashScan, StopsWhenItIsCancelledAndReportsWhatItHas) {
    makeWide(trash_, 50);
    const auto scan = operation();
    const auto result = runScan(scan, [&] { scan->cancel(); });
    EXPECT_EQ(result.items.size(), 1);
    EXPECT_EQ(scan->nTopLevelItemsCount(), 50);
}

}  // namespace brimvault::tests
