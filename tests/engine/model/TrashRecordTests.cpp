#include "platform/TrashRecord.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "engine/model/FileFacts.h"
#include "engine/model/TrashTexts.h"
#include "support/FixtureTrees.h"
#include "support/SubstituteHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;
using engine::FileFacts;
using platform::TrashRecord;
using testing::HasSubstr;
namespace fs = std::filesystem;

namespace {

std::string originIn(const std::string& path, const fs::path& top = {}) {
    return TrashRecord::parse("[Trash Info]\nPath=" + path + "\nDeletionDate=2024-05-01T12:00:00\n", top).origin;
}

}  // namespace

TEST(TrashRecord, TellsTheOriginThatOneCanHave) {
    EXPECT_EQ(originIn("/home/me/a%20b%C3%A9%0A"), "/home/me/a b\xC3\xA9\n");
    EXPECT_EQ(originIn("folder/file", "/media/stick"), "/media/stick/folder/file");
    EXPECT_EQ(originIn("/home/file", "/media/stick"), "/home/file");
    for (const std::string& path :
         {std::string("folder/file"), std::string("/a/../b"), std::string("/a%2F..%2Fb"), std::string("/a%zz"),
          std::string("/a%4"), std::string("/a%00b"), std::string(), "/" + std::string(4096, 'a')}) {
        EXPECT_EQ(originIn(path), "") << path.substr(0, 20);
    }
    EXPECT_EQ(originIn("../file", "/media/stick"), "");
}

TEST(TrashRecord, TakesTheFirstValueOfItsGroup) {
    const auto record = TrashRecord::parse(
        "Path=/before\n[Other]\nPath=/other\n[Trash Info]\nPathology=/x\nPath=/first\nPath=/second\n"
        "DeletionDate=2024-05-01T12:30:00\n[Other]\nPath=/after\n",
        {});
    EXPECT_EQ(record.origin, "/first");
    EXPECT_EQ(record.deleted, QDateTime(QDate(2024, 5, 1), QTime(12, 30)));
    for (const char* date : {"", "yesterday", "2024-05-01", "2024-13-01T12:00:00", "2024-05-01T12:00:00Z and more"}) {
        EXPECT_FALSE(TrashRecord::parse("[Trash Info]\nDeletionDate=" + std::string(date), {}).deleted.isValid());
    }
}

// Whatever stands in it: each of its lines is one line of text, and a short one.
TEST(TrashRecord, IsShownAsHarmlessText) {
    const auto evil = TrashRecord::parse(
        "[Trash Info]\nPath=/a%0Ab%1B[31m%E2%80%AE%FF" + std::string(3000, 'x') + "\nDeletionDate=2024-05-01T12:00:00",
        {});
    const auto lines = engine::trashTexts::lines(evil);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].startsWith(QStringLiteral("From /a\uFFFDb\uFFFD[31m\uFFFD\uFFFDxx")))
        << lines[0].toStdString();
    EXPECT_LT(lines[0].size(), 320);
    EXPECT_THAT(lines[1].toStdString(), HasSubstr("2024"));
    EXPECT_EQ(engine::trashTexts::lines({}), QStringList{QStringLiteral("Origin unknown")});
}

TEST(TrashRecord, IsReadOfItemsOfADesktopsTrashAlone) {
    const TemporaryFolder folder;
    const auto home = folder / "home";
    const SubstituteHome system(home, {{"BRIMVAULT_TRIAL_ROOT", folder / "root"}});
    const auto trash = home / ".local/share/Trash";
    const auto recordOf = [&](const char* name) { return trash / "info" / (std::string(name) + ".trashinfo"); };
    const std::string text = "[Trash Info]\nPath=/home/me/old\nDeletionDate=2024-05-01T12:00:00\n";
    for (const char* name : {"good", "huge", "piped", "linked", "bare"}) {
        writeFile(trash / "files" / name, "12345");
        writeFile(recordOf(name), name == std::string("huge") ? text + std::string(20'000, '\n') : text);
    }
    for (const char* name : {"piped", "linked", "bare"}) {
        fs::remove(recordOf(name));
    }
    ASSERT_EQ(::mkfifo(recordOf("piped").c_str(), 0600), 0);
    fs::create_symlink(recordOf("good"), recordOf("linked"));
    EXPECT_EQ(FileFacts::of(trash / "files/good")->trashed->origin, "/home/me/old");
    for (const char* name : {"huge", "piped", "linked", "bare"}) {
        const auto facts = FileFacts::of(trash / "files" / name);
        ASSERT_TRUE(facts->trashed) << name;
        EXPECT_TRUE(facts->trashed->origin.empty() && !facts->trashed->deleted.isValid()) << name;
    }
    EXPECT_FALSE(FileFacts::of(recordOf("good"))->trashed);
}

}  // namespace brimvault::tests
