#include "engine/removal/ItemRemoval.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <system_error>

#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"
#include "support/SubstituteHome.h"
#include "support/TextPrinting.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using engine::removeItemAt;
namespace fs = std::filesystem;

namespace {

class RemovalOfItems : public testing::Test {
protected:
    RemovalOfItems() { fs::create_directories(home_); }

    static fs::path recordOf(const fs::path& item) {
        return item.parent_path().parent_path() / "info" / (item.filename().native() + ".trashinfo");
    }
    static fs::path makeTrashed(const fs::path& item) {
        writeFile(item / "inner/file", "12345");
        writeFile(recordOf(item), "[Trash Info]\nPath=/x\n");
        return item;
    }

    TemporaryFolder folder_;
    const fs::path home_ = folder_ / "home";
    const fs::path trash_ = home_ / ".local/share/Trash/files";
    const SubstituteHome system_{home_, {{"BRIMVAULT_TRIAL_ROOT", folder_ / "root"}}};
};

}  // namespace

TEST_F(RemovalOfItems, TellsTheSystemsReasonInTheUsersLanguage) {
    constexpr std::size_t tooLong = 300;
    const auto item = home_ / std::string(tooLong, 'x');
    const QString inEnglish = removeItemAt(item).reason;
    EXPECT_EQ(inEnglish, QStringLiteral("File name too long"));
    if (!fs::exists("/usr/share/locale/de/LC_MESSAGES/libc.mo")) {
        GTEST_SKIP() << "the system does not speak German: libc-l10n is not installed";
    }
    const std::string locale = std::setlocale(LC_ALL, nullptr);
    const QByteArray languages = qgetenv("LANGUAGE");
    qputenv("LANGUAGE", "de");
    std::setlocale(LC_ALL, "C.UTF-8");
    EXPECT_EQ(removeItemAt(item).reason, QStringLiteral("Der Dateiname ist zu lang"));
    qputenv("LANGUAGE", languages);
    std::setlocale(LC_ALL, locale.c_str());
}

TEST_F(RemovalOfItems, TakesTheRecordOfATrashedItemAlongAndNoOther) {
    const auto user = std::to_string(::getuid());
    const std::pair<fs::path, bool> folders[] = {{trash_, true},
                                                 {folder_ / "volume/.Trash" / user / "files", true},
                                                 {folder_ / "volume" / (".Trash-" + user) / "files", true},
                                                 {home_ / "Documents/files", false},
                                                 {folder_ / "volume/.Trash-4711/files", false},
                                                 {folder_ / ".Trash/4711/files", false},
                                                 {home_ / ".local/share/Trash/other", false}};
    for (const auto& [files, isTrash] : folders) {
        const auto neighbour = makeTrashed(files / "neighbour");
        for (const char* name : {"item", "line\nbreak \xff", "item.trashinfo", ".hidden"}) {
            const auto item = makeTrashed(files / name);
            EXPECT_TRUE(removeItemAt(item).gone) << item;
            EXPECT_FALSE(fs::exists(item)) << item;
            EXPECT_EQ(fs::exists(recordOf(item)), !isTrash) << item;
        }
        EXPECT_TRUE(removeItemAt(neighbour / "inner").gone);
        EXPECT_TRUE(fs::exists(recordOf(neighbour)));
    }
}

TEST_F(RemovalOfItems, LeavesARecordThatIsNoPlainFileOrBelongsToAnother) {
    const auto linked = makeTrashed(trash_ / "linked");
    fs::rename(recordOf(linked), home_ / "precious");
    fs::create_symlink(home_ / "precious", recordOf(linked));
    const auto foldered = makeTrashed(trash_ / "foldered");
    fs::remove(recordOf(foldered));
    writeFile(recordOf(foldered) / "file", "12345");
    const auto bare = makeTrashed(trash_ / "bare");
    fs::remove(recordOf(bare));
    const auto goneBefore = makeTrashed(trash_ / "gone before");
    removeTree(goneBefore);
    const auto records = fingerprint(home_, {".local/share/Trash/files"});
    for (const auto& item : {linked, foldered, bare, goneBefore}) {
        EXPECT_TRUE(removeItemAt(item).gone) << item;
    }
    EXPECT_EQ(fingerprint(home_, {".local/share/Trash/files"}), records);

    const auto item = makeTrashed(trash_ / "item");
    fs::rename(trash_ / "../info", home_ / "elsewhere");
    fs::create_directory_symlink(home_ / "elsewhere", trash_ / "../info");
    EXPECT_TRUE(removeItemAt(item).gone);
    EXPECT_TRUE(fs::exists(home_ / "elsewhere/item.trashinfo")) << "behind a link";
}

TEST_F(RemovalOfItems, KeepsTheRecordOfWhatCouldNotBeRemoved) {
    const auto item = makeTrashed(trash_ / "item");
    fs::permissions(item / "inner", static_cast<fs::perms>(0555));
    giveToNobody(folder_.path());
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        becomeNobody();
        const auto removal = removeItemAt(item);
        if (removal.gone || removal.reason.toStdString() != std::generic_category().message(EACCES)) {
            return "answered " + removal.reason.toStdString();
        }
        return fs::exists(item / "inner/file") && fs::exists(recordOf(item)) ? "" : "something is gone";
    });
}

TEST_F(RemovalOfItems, RefusesTheFoldersOfTheSectionsAndWhatHoldsThem) {
    const auto root = folder_ / "root";
    const std::vector<fs::path> folders = {home_ / "Library/Logs",
                                           home_ / "Library/Application Support/CrashReporter",
                                           home_ / "Library/Containers",
                                           root / "Library/Logs",
                                           root / "Applications",
                                           trash_,
                                           trash_ / "../info",
                                           home_ / ".Trash",
                                           home_ / "Library/Caches",
                                           home_ / "Downloads",
                                           home_ / ".config/com.quorvel.brimvault"};
    for (const auto& folder : folders) {
        writeFile(folder / "item/file", "12345");
    }
    fs::create_directory_symlink("Logs", home_ / "Library/Link");
    const auto before = fingerprint(folder_.path());
    auto refused = folders;
    for (const auto& holder :
         {trash_.parent_path(), home_ / ".local", home_ / "Library/Application Support", root, root / "Library",
          home_ / ".config", home_ / "Library/../Library/Logs/", home_ / "Library", home_, folder_.path()}) {
        refused.push_back(holder);
    }
    for (const auto& folder : refused) {
        const auto removal = removeItemAt(folder);
        EXPECT_FALSE(removal.gone) << folder;
        EXPECT_EQ(removal.reason, QStringLiteral("Can't remove file")) << folder;
    }
    EXPECT_EQ(fingerprint(folder_.path()), before);
    EXPECT_TRUE(removeItemAt(home_ / "Library/Link").gone);  // the link, and not what it points at
    for (const auto& folder : folders) {
        EXPECT_TRUE(removeItemAt(folder.lexically_normal() / "item").gone) << folder;
        EXPECT_TRUE(fs::is_directory(folder)) << folder;
    }
}

}  // namespace brimvault::tests
