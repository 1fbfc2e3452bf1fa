#include "platform/UserDefaults.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <limits>
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

class UserDefaultsTest : public testing::Test {
protected:
    // The contents of the damaged files that were renamed.
    [[nodiscard]] std::vector<std::string> keptAside() const {
        std::vector<std::string> kept;
        for (const auto& entry : fs::directory_iterator(file_.parent_path())) {
            if (entry.path().filename().native().starts_with("defaults.ini.damaged-")) {
                kept.push_back(contents(entry.path()));
            }
        }
        return kept;
    }

    TemporaryFolder folder_;
    const fs::path file_ = folder_ / "settings/defaults.ini";
};

}  // namespace

TEST_F(UserDefaultsTest, KeepWhatWasSetAtOnce) {
    constexpr auto max = std::numeric_limits<quint64>::max();
    UserDefaults defaults(file_);
    EXPECT_FALSE(defaults.number(counter));
    defaults.increase(counter);
    defaults.increase(counter);
    defaults.setNumber(QStringLiteral("bytes"), max);
    defaults.increase(QStringLiteral("bytes"));
    defaults.setBoolean(QStringLiteral("on"), true);
    defaults.setBoolean(QStringLiteral("off"), false);
    const UserDefaults again(file_);
    EXPECT_EQ(again.number(counter), 2U);
    EXPECT_EQ(again.number(QStringLiteral("bytes")), max);
    EXPECT_EQ(again.boolean(QStringLiteral("on")), true);
    EXPECT_EQ(again.boolean(QStringLiteral("off")), false);
    EXPECT_EQ(fs::status(file_).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(UserDefaultsTest, ReadNothingFromAValueOfTheWrongKind) {
    writeFile(file_,
              "[General]\nword=many\nnegative=-3\nfraction=1.5\nempty=\nlarge=18446744073709551616\nlist=1, 2\n"
              "zero=0\nseven=7\n");
    UserDefaults defaults(file_);
    for (const char* key : {"word", "negative", "fraction", "empty", "large", "list", "absent"}) {
        EXPECT_FALSE(defaults.number(QString::fromLatin1(key))) << key;
    }
    for (const char* key : {"word", "fraction", "empty", "list", "absent"}) {
        EXPECT_FALSE(defaults.boolean(QString::fromLatin1(key))) << key;
    }
    EXPECT_EQ(defaults.boolean(QStringLiteral("zero")), false);
    EXPECT_EQ(defaults.boolean(QStringLiteral("seven")), true);
    defaults.increase(QStringLiteral("word"));
    EXPECT_EQ(defaults.number(QStringLiteral("word")), 1U) << "counted on from nothing";
    EXPECT_EQ(defaults.number(QStringLiteral("seven")), 7U);
}

TEST_F(UserDefaultsTest, MoveAsideAFileThatCannotBeUnderstood) {
    const std::pair<std::string, bool> examples[] = {
        {"", true},
        {"[General]\nname=\xc3\xa9\t\n", true},
        {"no settings\nat all\n", false},
        {"counter=\xff\n", false},
        {"counter=\x01\n", false},
        {"counter=1\n" + std::string(1, '\0') + "=\n", false},
        {std::string("\x7f\x45LF\0\1\2\0\xff\xfe", 10), false},
    };
    for (const auto& [text, isUsable] : examples) {
        SCOPED_TRACE(testing::PrintToString(text));
        fs::remove_all(file_.parent_path());
        writeFile(file_, text);
        UserDefaults(file_).setNumber(counter, 7);
        EXPECT_EQ(keptAside(), isUsable ? std::vector<std::string>() : std::vector{text});
        EXPECT_EQ(UserDefaults(file_).number(counter), 7U);
    }
}

// Also where it was a regular file when the program started. As nobody, who could not replace a device.
TEST_F(UserDefaultsTest, NeitherWaitForWhatIsNoPlainFileNorReplaceIt) {
    writeFile(file_, "[General]\ncounter=5\n");
    giveToNobody(folder_.path());
    EXPECT_WELL_IN_CHILD([&] {
        becomeNobody();
        std::string wrong;
        const auto look = [&](UserDefaults& defaults, quint64 counted, const std::string& kind) {
            const auto before = fingerprint(folder_.path());
            defaults.increase(counter);
            const bool isKept = fingerprint(folder_.path()) == before;
            wrong += isKept && defaults.number(counter) == counted ? "" : kind + " ";
        };
        std::list<UserDefaults> earlier;
        for (int kind = 0; kind < 4; ++kind) {
            earlier.emplace_back(file_);
        }
        forEachHostileKind(file_, [&](const std::string& kind) {
            UserDefaults defaults(file_);
            look(defaults, 1, kind);
            look(earlier.front(), 6, kind + " that came later");
            earlier.pop_front();
        });
        fs::create_symlink("missing", file_);
        UserDefaults defaults(file_);
        look(defaults, 1, "link to nothing");
        return wrong;
    });
}

TEST_F(UserDefaultsTest, KeepWhatOthersWroteAndTheUsersOwnLines) {
    writeFile(file_, "before=3\n\n# mine\n[General]\r\ncounter=\"4\"\n[Other]\ncounter=9\n");
    const auto link = folder_ / "defaults.ini";
    fs::create_symlink("settings/defaults.ini", link);
    UserDefaults defaults(link);
    EXPECT_EQ(defaults.number(QStringLiteral("before")), 3U);
    UserDefaults(file_).setBoolean(QStringLiteral("LK_pt-PT @x"), true);
    defaults.increase(counter);
    defaults.setNumber(QStringLiteral("before"), 8);
    EXPECT_EQ(contents(file_),
              "before=3\n\n# mine\n[General]\r\ncounter=5\nLK_pt-PT%20%40x=true\nbefore=8\n[Other]\ncounter=9\n");
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(UserDefaults(file_).boolean(QStringLiteral("LK_pt-PT @x")), true);
    EXPECT_EQ(UserDefaults(file_).number(QStringLiteral("before")), 8U);
}

TEST_F(UserDefaultsTest, NeverLoseAFileThatMayNotBeReadOrMoved) {
    const std::tuple<const char*, fs::perms, fs::perms> examples[] = {
        {"[General]\nkept=1\n", fs::perms::none, fs::perms::owner_all},
        {"[General]\nkept=1\n", fs::perms::owner_write, fs::perms::owner_all},
        {"no settings\n", fs::perms::owner_all, static_cast<fs::perms>(0500)}};
    for (const auto& [text, ofFile, ofFolder] : examples) {
        removeTree(file_.parent_path());
        writeFile(file_, text);
        fs::permissions(file_, ofFile);
        fs::permissions(file_.parent_path(), ofFolder);
        giveToNobody(folder_.path());
        EXPECT_WELL_IN_CHILD([&]() -> std::string {
            becomeNobody();
            UserDefaults defaults(file_);
            defaults.increase(counter);
            return defaults.number(counter) == 1U ? "" : "the process forgot what it had set";
        });
        fs::permissions(file_.parent_path(), fs::perms::owner_all);
        fs::permissions(file_, fs::perms::owner_all);
        const auto aside = keptAside();
        EXPECT_EQ(aside.empty() ? contents(file_) : aside.front(), text);
    }
}

TEST_F(UserDefaultsTest, StandInTheUsersOwnConfiguration) {
    for (const auto& [variable, place] : {std::pair("", folder_ / ".config"), {"/somewhere", "/somewhere"}}) {
        const SubstituteHome home(folder_.path(), {{"XDG_CONFIG_HOME", variable}});
        EXPECT_EQ(UserDefaults::standardFile(), place / "com.quorvel.brimvault/defaults.ini");
    }
}

}  // namespace brimvault::tests
