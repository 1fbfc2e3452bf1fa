#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <thread>

#include "support/FileSections.h"
#include "support/FixtureTrees.h"
#include "support/SubstituteHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using scanners::STrshOperation;
using testing::ElementsAre;
using testing::UnorderedElementsAre;
using testing::UnorderedElementsAreArray;
namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

class TrashScan : public testing::Test {
protected:
    TrashScan() { fs::create_directories(home_); }

    // With the program's own script, or with one of these lines.
    [[nodiscard]] std::shared_ptr<STrshOperation> operation(const std::string& script = {},
                                                            std::chrono::milliseconds limit = 1h) {
        STrshOperation::Sources sources{.scriptLimit = limit, .finder = finder_};
        if (!script.empty()) {
            writeFile(folder_ / "script", script);
            sources.script = QString::fromStdString((folder_ / "script").native());
        }
        return std::make_shared<STrshOperation>(sources);
    }

    // The paths of the items, or their names where they are addressed by these.
    std::vector<fs::path> scan(const std::string& script = {}, std::chrono::milliseconds limit = 1h) {
        const auto result = runScan(operation(script, limit));
        std::vector<fs::path> found;
        sizes_.clear();
        for (const auto& item : result.items) {
            found.push_back(item->pfpath().empty() ? item->pfname() : item->pfpath());
            sizes_.push_back(item->pfSize());
        }
        expectedCount_ = result.expectedCount;
        return found;
    }

    // A script that prints these entries, each with its zero byte.
    static std::string printing(const std::vector<std::string>& entries) {
        std::string script = "printf '%s\\0'";
        for (const auto& entry : entries) {
            script += " '" + entry + "'";
        }
        return script + "\n";
    }

    static void setSticky(const fs::path& folder, bool sticky = true) {
        fs::permissions(folder, fs::perms::sticky_bit, sticky ? fs::perm_options::add : fs::perm_options::remove);
    }

    TemporaryFolder folder_;
    const fs::path home_ = folder_ / "home";
    const fs::path root_ = folder_ / "root";
    const fs::path trash_ = home_ / ".local/share/Trash/files";
    const std::string user_ = std::to_string(::getuid());
    const SubstituteHome system_{home_, {{"BRIMVAULT_TRIAL_ROOT", root_}}};
    platform::FinderPreferences finder_;
    std::vector<quint64> sizes_;
    qint64 expectedCount_ = -1;
};

}  // namespace

TEST_F(TrashScan, LooksWhereTheVariableSaysForTheDesktopsTrash) {
    writeFile(trash_ / "elsewhere", "12345");
    writeFile(folder_ / "data/Trash/files/here", "12345");
    fs::create_directory_symlink("data", folder_ / "link");
    const SubstituteHome system(home_, {{"BRIMVAULT_TRIAL_ROOT", root_}, {"XDG_DATA_HOME", folder_ / "link"}});
    EXPECT_THAT(scan(), ElementsAre(folder_ / "data/Trash/files/here"));
}

TEST_F(TrashScan, TrustsOnlyTheTrashFoldersOfVolumesThatNobodyElseCanHaveMade) {
    const auto volume = [&](const char* name) { return folder_ / "volumes" / name; };
    const auto shared = [&](const char* name) { return volume(name) / ".Trash"; };
    const auto own = [&](const char* name) { return volume(name) / (".Trash-" + user_); };
    for (const char* name : {"good", "not sticky", "linked", "linked user", "given"}) {
        writeFile(shared(name) / user_ / "files/item", "12345");
        setSticky(shared(name));
    }
    for (const char* name : {"own", "linked own", "linked files", "given"}) {
        writeFile(own(name) / "files/item", "12345");
    }
    const auto moveBehindLink = [&](const fs::path& folder) {
        fs::rename(folder, folder.parent_path() / "target");
        fs::create_directory_symlink("target", folder);
    };
    setSticky(shared("not sticky"), false);
    moveBehindLink(shared("linked"));
    moveBehindLink(shared("linked user") / user_);
    moveBehindLink(own("linked own"));
    moveBehindLink(own("linked files") / "files");
    writeFile(volume("another's") / ".Trash-4711/files/item", "12345");
    if (::getuid() == 0) {  // what has the user's name and is not the user's
        EXPECT_EQ(::lchown((shared("given") / user_).c_str(), 4711, 4711), 0);
        EXPECT_EQ(::lchown(own("given").c_str(), 4711, 4711), 0);
    } else {
        fs::remove_all(volume("given"));
    }
    writeMountTable(root_, {fs::directory_iterator(folder_ / "volumes"), fs::directory_iterator()});
    EXPECT_THAT(scan(), UnorderedElementsAre(shared("good") / user_ / "files/item", own("own") / "files/item"));
}

TEST_F(TrashScan, ListsAVolumeOnceHoweverOftenItIsMounted) {
    const fs::path odd = folder_ / "a b\tc\nd\\040";
    writeFile(odd / (".Trash-" + user_) / "files/line\nbreak", "12345");
    fs::create_directory_symlink(odd, folder_ / "again");
    writeMountTable(root_, {odd, odd, folder_ / "again", folder_ / "missing"});
    EXPECT_THAT(scan(), ElementsAre(odd / (".Trash-" + user_) / "files/line\nbreak"));
}

TEST_F(TrashScan, TakesAStickyTrashOfTheHomeFolderForOneThatUsersShare) {
    const auto shared = home_ / ".Trash";
    writeFile(shared / "item/file", "12345");
    writeFile(shared / "4711/files/others", "1234567");
    setSticky(shared);
    EXPECT_THAT(scan(), ElementsAre("item"));
    EXPECT_EQ(expectedCount_, 2);
    setSticky(shared, false);
    EXPECT_THAT(scan("exit 0"), UnorderedElementsAre("item", "4711"));
    setSticky(shared);
    writeFile(shared / user_ / "files/own", "12345");
    writeMountTable(root_, {home_});
    EXPECT_THAT(scan(), ElementsAre(shared / user_ / "files/own"));
}

TEST_F(TrashScan, ShowsHiddenItemsByNameOnlyWhereTheFileBrowserDoes) {
    writeFile(home_ / ".Trash/.hidden", "12345");
    writeFile(home_ / ".Trash/shown", "12345");
    EXPECT_THAT(scan("exit 1"), ElementsAre("shown"));
    writeFile(home_ / "Library/Preferences/com.apple.finder.plist",
              "<plist><dict><key>AppleShowAllFiles</key><true/></dict></plist>");
    EXPECT_THAT(scan("exit 1"), UnorderedElementsAre("shown", ".hidden"));
    EXPECT_EQ(expectedCount_, 1);  // hidden ones are never counted here
}

TEST_F(TrashScan, ShowsWhatIsHiddenInADesktopsTrash) {
    const auto volume = folder_ / "volume" / (".Trash-" + user_) / "files";
    for (const auto& item : {trash_ / ".git", volume / ".venv", home_ / ".Trash/.hidden", home_ / ".Trash/shown"}) {
        writeFile(item, "12345");
    }
    writeMountTable(root_, {folder_ / "volume"});
    EXPECT_THAT(scan(), UnorderedElementsAre(trash_ / ".git", volume / ".venv", home_ / ".Trash/shown"));
}

TEST_F(TrashScan, FindsTheTrashesOfSandboxedProgramsBehindNoLink) {
    const fs::path trashes[] = {home_ / "snap/code/common/.local/share/Trash",
                                home_ / "snap/code/42/.local/share/Trash", home_ / ".var/app/org.App/data/Trash",
                                home_ / ".var/app/org.App/.local/share/Trash"};
    std::vector<fs::path> expected;
    for (const auto& trash : trashes) {
        writeFile(trash / "files/a b", "12345");
        writeFile(trash / "info/a b.trashinfo", "[Trash Info]\n");
        expected.push_back(trash / "files/a b");
    }
    fs::create_directory_symlink("42", home_ / "snap/code/current");
    writeFile(folder_ / "outside/data/Trash/files/others", "12345");
    writeFile(folder_ / "outside/Trash/files/others", "12345");
    fs::create_directory_symlink(folder_ / "outside", home_ / ".var/app/org.Linked");
    fs::create_directories(home_ / ".var/app/org.Data");
    fs::create_directory_symlink(folder_ / "outside", home_ / ".var/app/org.Data/data");
    writeFile(home_ / "snap/code/42/Trash/files/others", "12345");
    EXPECT_THAT(scan(), UnorderedElementsAreArray(expected));
    const auto elsewhere = folder_ / "outside/snap/a/b/.local/share/Trash/files/others";
    EXPECT_THAT(scan(printing({elsewhere, "5", expected[0], "5"})), ElementsAre(expected[0]));
}

TEST_F(TrashScan, TicksWhatIsBeingDeletedOnlyAfterADay) {
    const auto leftover = trash_.parent_path() / "expunged/12345";
    writeFile(leftover / "file", "12345");
    for (const auto& [age, ticked] : {std::pair(23h, false), std::pair(25h, true)}) {
        STrshOperation::Sources sources{.finder = finder_};
        sources.now = [age = age] { return std::chrono::system_clock::now() + age; };
        const auto items = runScan(std::make_shared<STrshOperation>(sources)).items;
        ASSERT_EQ(items.size(), 1);
        EXPECT_EQ(items[0]->pfpath(), leftover);
        EXPECT_EQ(items[0]->noteText(), QStringLiteral("Being deleted"));
        EXPECT_EQ(items[0]->ppbChecked(), ticked);
    }
}

TEST_F(TrashScan, TellsWhereItemsWereAndThatItIsUnknown) {
    const auto volume = folder_ / "volume" / (".Trash-" + user_);
    for (const auto& trash : {trash_.parent_path(), volume}) {
        writeFile(trash / "files/known", "12345");
        writeFile(trash / "info/known.trashinfo", "[Trash Info]\nPath=" + std::string(trash == volume ? "" : "/home/") +
                                                      "a%20b\nDeletionDate=2024-05-01T12:00:00\n");
    }
    writeFile(trash_ / "unknown", "12345");
    writeFile(trash_ / "empty", "");
    writeFile(trash_.parent_path() / "info/empty.trashinfo", "[Trash Info]\nPath=/home/b\n");
    writeMountTable(root_, {folder_ / "volume"});
    std::map<fs::path, std::string> origins;
    for (const auto& item : runScan(operation()).items) {
        ASSERT_TRUE(item->details().trashed);
        origins[item->pfpath()] = item->details().trashed->origin;
        EXPECT_TRUE(item->ppbChecked() && item->noteText().isEmpty());
        EXPECT_EQ(item->pfSize(), item->pfname() == "empty" ? 26U : 5U) << "its record goes along";
    }
    EXPECT_EQ(origins, (std::map<fs::path, std::string>{{trash_ / "empty", "/home/b"},
                                                        {trash_ / "known", "/home/a b"},
                                                        {volume / "files/known", (folder_ / "volume/a b").native()},
                                                        {trash_ / "unknown", ""}}));
}

TEST_F(TrashScan, ListsTheHomeFoldersTrashWhereTheScriptIsOfNoUse) {
    writeFile(home_ / ".Trash/item/file", "12345");
    const auto inTrash = (trash_ / "other").native();
    writeFile(inTrash, "1234567");
    const std::vector<std::string> useless = {
        "exit 0",
        printing({inTrash, "1"}) + "exit 1",
        printing({inTrash}),
        printing({"garbage", "1", "", "", "./relative", "5"}),
        printing({"", inTrash, "7"}),
        printing({home_ / "Documents", "5", home_ / ".Trash", "5", "/", "5"}),
        printing({trash_ / "../files/other", "5", trash_ / ".", "5", trash_ / "a/b", "5", inTrash + "/", "5"}),
        printing({folder_ / ".Trash-4712/files/other", "5"}),
        "head -c 100000 /dev/urandom",
    };
    for (const auto& script : useless) {
        EXPECT_THAT(scan(script), ElementsAre("item")) << script;
        EXPECT_THAT(sizes_, ElementsAre(5U)) << script;
        EXPECT_EQ(expectedCount_, 1) << script;
    }
}

TEST_F(TrashScan, ReadsPairsUntilOneIsNotWhole) {
    for (const char* name : {"a", "b", "c"}) {
        writeFile(trash_ / name, "12345");
    }
    const auto list = printing({trash_ / "a", "70", "not in the trash", "8", trash_ / "b", "80", trash_ / "c"});
    EXPECT_THAT(scan(list), ElementsAre(trash_ / "a", trash_ / "b"));
    EXPECT_THAT(sizes_, ElementsAre(70U, 80U));
    EXPECT_EQ(expectedCount_, 2);
    EXPECT_THAT(scan(list + "sleep infinity", 1s), ElementsAre(trash_ / "a", trash_ / "b"))
        << "a volume that is silent";
}

TEST_F(TrashScan, AsksAVeryLongFolderInTheOrderOfItsInodes) {
    constexpr std::size_t count = 1000;
    for (std::size_t number = count; number > 0; --number) {
        writeFile(trash_ / std::to_string(number), "12345");
    }
    std::vector<std::uint64_t> inodes;
    for (const auto& item : scan()) {
        inodes.push_back(files::statusOf(item)->identity.inode);
    }
    EXPECT_EQ(inodes.size(), count);
    EXPECT_TRUE(std::is_sorted(inodes.begin(), inodes.end()));
}

TEST_F(TrashScan, MeasuresWhatTheScriptGivesNoNumberFor) {
    writeFile(trash_ / "a", "12345");
    std::vector<std::pair<std::string, quint64>> examples = {{"1", 1},
                                                             {"9223372036854775807", 9'223'372'036'854'775'807}};
    for (const char* none : {"", "0", "-7", "many", "12 bytes", "0x10", " 12", "1e3", "9223372036854775808"}) {
        examples.emplace_back(none, 5);
    }
    for (const auto& [text, size] : examples) {
        EXPECT_THAT(scan(printing({trash_ / "a", text})), ElementsAre(trash_ / "a"));
        EXPECT_THAT(sizes_, ElementsAre(size)) << text;
    }
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

TEST_F(TrashScan, IsCancelledWhileTheScriptHangs) {
    makeWide(home_ / ".Trash", 5);
    const auto started = folder_ / "started";
    ASSERT_EQ(::mkfifo(started.c_str(), 0600), 0);
    const auto hanging = operation("echo >'" + started.native() + "'; sleep infinity");
    const std::jthread user([&] {
        (void)std::ifstream(started).get();
        hanging->cancel();
    });
    EXPECT_TRUE(runScan(hanging).items.isEmpty());
}

}  // namespace brimvault::tests
