#include <gmock/gmock.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <map>

#include "engine/removal/ItemRemoval.h"
#include "files/trees/Measure.h"
#include "scanners/places/LogFiles.h"
#include "support/FileSections.h"
#include "support/FixtureTrees.h"
#include "support/OpenedElsewhere.h"
#include "support/SubstituteHome.h"

// Which files are logs; what a whole desktop has is among the tests of CachePlaces.

namespace brimvault::tests {

using engine::Section;
using scanners::LogNames;
using scanners::logsRules;
using scanners::PlaceRule;

namespace {

const PlaceRule& ruleNamed(std::string_view id) {
    const auto rules = logsRules();
    return *std::find_if(rules.begin(), rules.end(), [id](const auto& rule) { return rule.id == id; });
}

class LogPlaces : public testing::Test {
protected:
    LogPlaces() { fs::create_directories(home_); }

    const TemporaryFolder folder_;
    const fs::path home_ = folder_ / "home";
    const fs::path root_ = folder_ / "root";
    const SubstituteHome system_{home_, {{"BRIMVAULT_TRIAL_ROOT", root_}}};
};

}  // namespace

TEST(LogNames, AreThoseOfLogsAloneFromTheirFirstLetterToTheirLast) {
    const LogNames names(logsRules());
    const auto& logs = ruleNamed("state");
    for (const char* name :
         {"a.log",      ".hidden.log",   "a.log.old",      "a.log.bak",      "a.log1",           "a.log.1",
          "a.log-1",    "a.log.999",     "a.log-20261101", "a.log.20261101", "a.log-2026110112", "a.log.gz",
          "a.log.1.gz", "a.log.xz",      "a.log.2.bz2",    "a.log.zst",      "a.log.old.lz4",    "a b.log",
          "a.b.c.log",  "main-2026.log", "\xff\xfe.log",   "lsp.log",        "1a.log",           "-.log"}) {
        EXPECT_TRUE(names.isLog(logs, name)) << name;
    }
    for (const char* name : {"catalog",    "blog",          "000003.log", "1.log",       "007.log.old", "a.log.1234",
                             "changelog",  "x.log.gz.part", ".log",       "a.log\n",     "a.log.1\n",   "a.log~",
                             "a.LOG",      "a.Log",         "a.log.",     "a.log..1",    "a.log.old.1", "a.log.2026110",
                             "a.log.gz.1", "a.log.zip",     "log",        "a.logs",      "a.log.txt",   "a.log.swp",
                             "LOG.old",    "a.log-",        "history",    "a.log/b.log", "a.log.1.2",   "a.journal"}) {
        EXPECT_FALSE(names.isLog(logs, name)) << name;
    }
    EXPECT_TRUE(names.isLog(ruleNamed("xsession"), ".xsession-errors-:0.old"));
    EXPECT_FALSE(names.isLog(ruleNamed("xsession"), "x.xsession-errors"));
    EXPECT_FALSE(names.isLog(ruleNamed("xsession"), ".xsession-errors.1"));
    EXPECT_TRUE(names.isLog(ruleNamed("virtualbox"), "VBox.log.12"));
    EXPECT_FALSE(names.isLog(ruleNamed("virtualbox"), "VirtualBox.log"));
    EXPECT_FALSE(names.isLog(ruleNamed("core"), "core.c"));
    EXPECT_FALSE(names.isLog(ruleNamed("electron.logs"), "000123.log"));
    for (const char* folder :
         {".git", "HexChat", "io.github.Hexchat", "quassel-irc.org", "gvfs-metadata", ".purple", "undo"}) {
        EXPECT_TRUE(names.isSpared(folder)) << folder;
    }
    for (const char* folder : {"nvim", "git", "logs", "org.example.Image", "catalog"}) {
        EXPECT_FALSE(names.isSpared(folder)) << folder;
    }
}

TEST_F(LogPlaces, AreOneRowForEachFolderOfAProgramWithExactlyItsFilesAndWhoWritesThem) {
    const auto state = home_ / ".local/state/tool";
    writeFile(state / "a.log", std::string(3'000, 'x'));
    writeFile(state / "inner/b.log.1", std::string(500, 'x'));
    writeFile(state / "inner/history", "x");
    writeFile(home_ / ".local/state/single/lsp.log", std::string(40, 'x'));
    const OpenedElsewhere reader(state / "a.log");
    const OpenedElsewhere writer(home_ / ".local/state/single/lsp.log", OpenedElsewhere::As::writtenFile);
    const auto items = scanSection(Section::logs).items;
    ASSERT_EQ(items.size(), 2);
    const auto& [single, tool] = std::pair(items[0], items[1]);
    EXPECT_EQ(single->ppdisplayName(), QStringLiteral("single \u2013 lsp.log"));
    EXPECT_EQ(single->pfpath(), home_ / ".local/state/single/lsp.log");
    EXPECT_EQ(single->note(), engine::ItemNote::emptied);
    EXPECT_EQ(single->details().noteArgument, QString::fromStdString(files::programName(writer.process())));
    EXPECT_TRUE(single->ppbChecked());
    EXPECT_TRUE(single->details().isEmptiedWhileWritten && tool->details().isEmptiedWhileWritten);
    EXPECT_EQ(tool->ppdisplayName(), QStringLiteral("tool"));
    EXPECT_EQ(tool->pfSize(), 3'500);
    EXPECT_EQ(tool->note(), engine::ItemNote::none) << "who only reads it loses nothing";
    EXPECT_THAT(tool->removalPaths(), testing::UnorderedElementsAre(state / "a.log", state / "inner/b.log.1"));
    for (const auto& target : tool->details().targets) {
        ASSERT_EQ(target.expected.size(), target.names.size());
        EXPECT_NE(target.expected.front().identity, 0U);
    }
}

TEST_F(LogPlaces, AreNoneOfTheUsersOwnFilesWhateverVariablesSay) {
    writeFile(root_ / "var/log/tool/x.log", "12345");
    for (const char* folder : {"Documents/project", "Documents/project/logs", ".ssh/logs", "project/logs"}) {
        writeFile(home_ / folder / "x.log", "12345");
    }
    for (const char* variable : {"XDG_STATE_HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"}) {
        for (const auto& value :
             {home_ / "Documents", home_ / "Documents/project", home_, folder_.path(), fs::path("/"), home_ / ".ssh",
              home_ / ".local/share/Trash", root_ / "var", fs::path("Documents")}) {
            const SubstituteHome system(home_, {{variable, value}, {"BRIMVAULT_TRIAL_ROOT", root_}});
            const auto items = scanSection(Section::logs).items;
            EXPECT_TRUE(items.size() == 1 && !items.first()->ppbDeletable()) << variable << value;
        }
    }
    writeFile(home_ / "other/tool/x.log", "12345");
    const SubstituteHome system(home_, {{"XDG_STATE_HOME", home_ / "other"}, {"BRIMVAULT_TRIAL_ROOT", root_}});
    EXPECT_EQ(scanSection(Section::logs).items.size(), 2);
}

// Whoever runs the program, root included.
TEST_F(LogPlaces, OfTheSystemAreShownAndRemovedInNoWay) {
    writeFile(root_ / "var/log/syslog", std::string(9'000, 'x'));
    writeFile(root_ / "var/log/nginx/access.log", std::string(5'000, 'x'));
    writeFile(root_ / "var/log/journal/1234/system.journal", std::string(20'000, 'x'));
    fs::create_directories(root_ / "var/lib/systemd/coredump");
    const auto before = fingerprint(root_);
    const auto items = scanSection(Section::logs).items;
    ASSERT_EQ(items.size(), 2) << "what is empty is not shown";
    std::map<std::string, std::shared_ptr<engine::FFItem>> byRule;
    for (const auto& item : items) {
        byRule[item->details().rule] = item;
        EXPECT_FALSE(item->ppbDeletable() || item->ppbChecked());
        EXPECT_EQ(item->note(), engine::ItemNote::command);
        item->setPpbChecked(true);
    }
    EXPECT_TRUE(
        byRule["system.journal"]->noteText().contains(QStringLiteral("sudo journalctl --rotate --vacuum-time")));
    const auto blocks = [](const fs::path& path) { return files::measureSpace(path).space.bytes; };
    const auto journal = blocks(root_ / "var/log/journal");
    EXPECT_GE(byRule["system.journal"]->pfSize(), 20'000U);
    EXPECT_EQ(byRule["system.logs"]->pfSize() + journal + files::statusOf(root_ / "var/log")->allocated,
              blocks(root_ / "var/log"));
    EXPECT_TRUE(cleanItems(Section::logs, items).empty());
    for (const char* folder : {"var", "usr", "var/log", "var/log/journal", "var/lib/systemd/coredump"}) {
        fs::create_directories(root_ / folder);
        EXPECT_FALSE(engine::removeItemAt(root_ / folder).gone) << folder;
    }
    for (const char* file : {"var/log/syslog", "var/log/nginx", "var/log/journal/1234"}) {
        EXPECT_FALSE(engine::removeItemAt(root_ / file).gone) << file;
    }
    fs::remove(root_ / "usr");
    EXPECT_EQ(fingerprint(root_), before);
}

TEST_F(LogPlaces, AreNoFilesOfOthersNorWhatHasAnotherName) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can give a file to another user";
    }
    writeFile(root_ / "var/crash/_usr_bin_tool.1000.crash", "x");
    writeFile(root_ / "var/crash/_usr_bin_tool.1001.crash", "12345");
    writeFile(root_ / "var/crash/tool.crash", "x");
    ASSERT_EQ(::chown((root_ / "var/crash/_usr_bin_tool.1000.crash").c_str(), 1000, 1000), 0);
    ASSERT_EQ(::mkfifo((root_ / "var/crash/_fifo.1.crash").c_str(), 0600), 0);
    const auto items = scanSection(Section::logs).items;
    ASSERT_EQ(items.size(), 1);
    EXPECT_EQ(items[0]->removalPaths(), std::vector<fs::path>{root_ / "var/crash/_usr_bin_tool.1001.crash"});
    EXPECT_EQ(items[0]->note(), engine::ItemNote::report);
    EXPECT_FALSE(items[0]->ppbChecked());
}

}  // namespace brimvault::tests
