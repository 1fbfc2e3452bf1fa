#include "platform/UserDefaults.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <list>

#include "support/ChildProcess.h"
#include "support/HostileFiles.h"
#include "support/SubstituteHome.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using platform::UserDefaults;
namespace fs = std::filesystem;

namespace {

const QString counter = QStringLiteral("counter");

std::string contents(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// The contents of the damaged files that were renamed.
std::vector<std::string> keptAside(const fs::path& file) {
    std::vector<std::string> kept;
    for (const auto& entry : fs::directory_iterator(file.parent_path())) {
        if (entry.path().filename().native().starts_with(file.filename().native() + ".damaged-")) {
            kept.push_back(contents(entry.path()));
        }
    }
    return kept;
}

}  // namespace

TEST(UserDefaults, KeepWhatWasSet) {
    const TemporaryFolder folder;
    const auto file = folder / "settings/defaults.ini";
    {
        UserDefaults defaults(file);
        EXPECT_FALSE(defaults.number(counter));
        defaults.increase(counter);
        defaults.increase(counter);
        defaults.setNumber(QStringLiteral("bytes"), 18'446'744'073'709'551'615ULL);
        defaults.setBoolean(QStringLiteral("on"), true);
        defaults.setBoolean(QStringLiteral("off"), false);
    }
    const UserDefaults again(file);
    EXPECT_EQ(again.number(counter), 2U);
    EXPECT_EQ(again.number(QStringLiteral("bytes")), 18'446'744'073'709'551'615ULL);
    EXPECT_EQ(again.boolean(QStringLiteral("on")), true);
    EXPECT_EQ(again.boolean(QStringLiteral("off")), false);
}

TEST(UserDefaults, WriteEveryChangeAtOnce) {
    const TemporaryFolder folder;
    UserDefaults defaults(folder / "defaults.ini");
    defaults.setNumber(counter, 41);
    EXPECT_NE(contents(folder / "defaults.ini").find("counter=41"), std::string::npos);
}

TEST(UserDefaults, ReadNothingFromAValueOfTheWrongKind) {
    const TemporaryFolder folder;
    writeFile(folder / "defaults.ini",
              "[General]\nword=many\nnegative=-3\nfraction=1.5\nempty=\nlarge=18446744073709551616\nlist=1, 2\n"
              "zero=0\nseven=7\n");
    const UserDefaults defaults(folder / "defaults.ini");
    for (const char* key : {"word", "negative", "fraction", "empty", "large", "list", "absent"}) {
        EXPECT_FALSE(defaults.number(QString::fromLatin1(key))) << key;
    }
    for (const char* key : {"word", "fraction", "empty", "list", "absent"}) {
        EXPECT_FALSE(defaults.boolean(QString::fromLatin1(key))) << key;
    }
    EXPECT_EQ(defaults.boolean(QStringLiteral("zero")), false);
    EXPECT_EQ(defaults.boolean(QStringLiteral("seven")), true);
}

TEST(UserDefaults, CountOnFromNothingWhereACounterIsNoNumber) {
    const TemporaryFolder folder;
    writeFile(folder / "defaults.ini", "[General]\ncounter=many\nother=5\n");
    UserDefaults defaults(folder / "defaults.ini");
    defaults.increase(counter);
    EXPECT_EQ(defaults.number(counter), 1U);
    EXPECT_EQ(defaults.number(QStringLiteral("other")), 5U);
}

TEST(UserDefaults, MoveAsideAFileThatCannotBeUnderstood) {
    for (const std::string& garbage :
         {std::string("no settings\nat all\n"), std::string("\x7f\x45LF\0\1\2\0\xff\xfe", 10),
          std::string("\0\1=\xff\xfe\n\0\0=", 8), std::string("[General]\ncounter=1\n\xc3\x28=\xff\0", 25)}) {
        const TemporaryFolder folder;
        writeFile(folder / "defaults.ini", garbage);
        UserDefaults defaults(folder / "defaults.ini");
        defaults.setNumber(counter, 7);
        EXPECT_EQ(keptAside(folder / "defaults.ini"), std::vector{garbage}) << testing::PrintToString(garbage);
        EXPECT_EQ(UserDefaults(folder / "defaults.ini").number(counter), 7U);
    }
}

TEST(UserDefaults, LeaveAnEmptyFileWhereItIs) {
    const TemporaryFolder folder;
    writeFile(folder / "defaults.ini", "");
    UserDefaults(folder / "defaults.ini").setNumber(counter, 7);
    EXPECT_EQ(keptAside(folder / "defaults.ini").size(), 0U);
    EXPECT_EQ(UserDefaults(folder / "defaults.ini").number(counter), 7U);
}

// Also where it was a regular file when the program started.
TEST(UserDefaults, NeitherWaitForWhatIsNoPlainFileNorReplaceIt) {
    const TemporaryFolder folder;
    const auto file = folder / "defaults.ini";
    const auto expectKept = [&](UserDefaults& defaults, quint64 counted, const std::string& kind) {
        const auto before = fingerprint(folder.path());
        defaults.increase(counter);
        EXPECT_EQ(defaults.number(counter), counted) << kind;
        EXPECT_EQ(fingerprint(folder.path()), before) << kind;
    };
    writeFile(file, "[General]\ncounter=5\n");
    std::list<UserDefaults> earlier;
    for (int kind = 0; kind < 4; ++kind) {
        earlier.emplace_back(file);
    }
    forEachHostileKind(file, [&](const std::string& kind) {
        UserDefaults defaults(file);
        expectKept(defaults, 1, kind);
        ASSERT_FALSE(earlier.empty());
        expectKept(earlier.front(), 6, kind + " that came later");
        earlier.pop_front();
    });
    fs::create_symlink("missing", file);
    UserDefaults defaults(file);
    expectKept(defaults, 1, "link to nothing");
}

TEST(UserDefaults, KeepWhatOthersWroteAndTheUsersOwnLines) {
    const TemporaryFolder folder;
    const auto file = folder / "linked/defaults.ini";
    writeFile(file, "before=3\n\n# mine\n[General]\r\ncounter=\"4\"\n[Other]\ncounter=9\n");
    fs::create_symlink("linked/defaults.ini", folder / "defaults.ini");
    UserDefaults defaults(folder / "defaults.ini");
    EXPECT_EQ(defaults.number(QStringLiteral("before")), 3U);
    UserDefaults(file).setBoolean(QStringLiteral("LK_pt-PT @x"), true);
    defaults.increase(counter);
    defaults.setNumber(QStringLiteral("before"), 8);
    EXPECT_EQ(contents(file),
              "before=3\n\n# mine\n[General]\r\ncounter=5\nLK_pt-PT%20%40x=true\nbefore=8\n[Other]\ncounter=9\n");
    EXPECT_TRUE(fs::is_symlink(folder / "defaults.ini"));
    EXPECT_EQ(UserDefaults(file).boolean(QStringLiteral("LK_pt-PT @x")), true);
    EXPECT_EQ(UserDefaults(file).number(QStringLiteral("before")), 8U);
}

TEST(UserDefaults, NeverLoseAFileThatMayNotBeRead) {
    for (const auto mode : {fs::perms::none, fs::perms::owner_write}) {
        const TemporaryFolder folder;
        const auto file = folder / "defaults.ini";
        writeFile(file, "[General]\nkept=1\n");
        fs::permissions(file, mode);
        giveToNobody(folder.path());
        EXPECT_WELL_IN_CHILD([&]() -> std::string {
            becomeNobody();
            UserDefaults defaults(file);
            defaults.increase(counter);
            return defaults.number(counter) == 1U ? "" : "the process forgot what it had set";
        });
        fs::permissions(file, fs::perms::owner_all);
        const auto aside = keptAside(file);
        EXPECT_EQ(aside.empty() ? contents(file) : aside.front(), "[General]\nkept=1\n");
    }
}

TEST(UserDefaults, LeaveADamagedFileThatCannotBeMoved) {
    const TemporaryFolder folder;
    writeFile(folder / "closed/defaults.ini", "no settings\n");
    giveToNobody(folder.path());
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        becomeNobody();
        fs::permissions(folder / "closed", static_cast<fs::perms>(0500));
        UserDefaults defaults(folder / "closed/defaults.ini");
        defaults.increase(counter);
        return defaults.number(counter) == 1U ? "" : "the process forgot what it had set";
    });
    EXPECT_EQ(contents(folder / "closed/defaults.ini"), "no settings\n");
}

TEST(UserDefaults, StandInTheUsersOwnConfiguration) {
    const TemporaryFolder folder;
    {
        const SubstituteHome home(folder.path());
        EXPECT_EQ(UserDefaults::standardFile(), folder / ".config/com.quorvel.brimvault/defaults.ini");
    }
    const SubstituteHome home(folder.path(), {{"XDG_CONFIG_HOME", "/somewhere"}});
    EXPECT_EQ(UserDefaults::standardFile(), "/somewhere/com.quorvel.brimvault/defaults.ini");
}

}  // namespace brimvault::tests
