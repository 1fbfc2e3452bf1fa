#include "engine/removal/ItemTrash.h"

#include <gmock/gmock.h>
#include <sys/mount.h>

#include "engine/removal/ItemRemoval.h"
#include "support/ChildProcess.h"
#include "support/FileSections.h"
#include "support/FixtureTrees.h"
#include "support/SubstituteHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using engine::ItemRemoval;
using engine::Section;

namespace {

class ItemTrash : public testing::Test {
protected:
    ItemTrash() { fs::create_directories(downloads_); }

    /// Of the last scan.
    [[nodiscard]] static std::shared_ptr<engine::FFItem> scanned(const std::string& name) {
        const auto items = scanSection(Section::downloads).items;
        const auto found =
            std::find_if(items.begin(), items.end(), [&](const auto& item) { return item->pfname() == name; });
        EXPECT_TRUE(found != items.end()) << name;
        return *found;
    }
    [[nodiscard]] static engine::TrashMove move(const engine::FFItem& item) {
        return moveToTrash(item, item.location());
    }
    /// What keeps the item in its place; fails if anything has changed.
    [[nodiscard]] QString refusal(const engine::FFItem& item) const {
        const auto before = fingerprint(folder_.path(), {"data"});
        const auto result = move(item);
        EXPECT_TRUE(result.files.empty());
        EXPECT_EQ(fingerprint(folder_.path(), {"data"}), before);
        EXPECT_TRUE(!fs::exists(trash_ / "info") || fs::is_empty(trash_ / "info"));
        return result.reason;
    }

    TemporaryFolder folder_;
    const fs::path downloads_ = folder_ / "home/Downloads";
    const fs::path trash_ = folder_ / "data/Trash";
    const SubstituteHome home_{folder_ / "home",
                               {{"BRIMVAULT_TRIAL_ROOT", folder_ / "root"}, {"XDG_DATA_HOME", folder_ / "data"}}};
};

}  // namespace

TEST_F(ItemTrash, TakesAnItemWithARecordAndGivesItBack) {
    const std::string odd = "100% \xff\n";
    for (const auto& name : {std::string("folder"), odd}) {
        writeFile(downloads_ / name / "inside/file", "12345");
        const auto before = fingerprint(downloads_);
        const auto moved = move(*scanned(name));
        ASSERT_EQ(moved.files.size(), 1U) << moved.reason.toStdString();
        EXPECT_FALSE(fs::exists(downloads_ / name));
        EXPECT_EQ(contentOf(trash_ / "files" / name / "inside/file"), "12345");
        EXPECT_THAT(contentOf(trash_ / "info" / (name + ".trashinfo")),
                    testing::StartsWith("[Trash Info]\nPath=" + downloads_.native() + "/" +
                                        (name == odd ? "100%25%20%FF%0A" : name) + "\nDeletionDate="));
        EXPECT_EQ(fs::status(trash_).permissions(), fs::perms::owner_all);
        EXPECT_EQ(putBack(moved.files).reason, QString());
        EXPECT_EQ(fingerprint(downloads_), before);
        EXPECT_TRUE(fs::is_empty(trash_ / "files") && fs::is_empty(trash_ / "info"));
        const auto again = putBack(moved.files);
        EXPECT_EQ(again.reason, u"It is not in the Trash any more");
        EXPECT_TRUE(again.left.empty());
    }
}

TEST_F(ItemTrash, TakesAllThatAnItemStandsForOrNothing) {
    const auto begin = [&] {
        writeFile(downloads_ / "film.mkv.part", "12345");
        writeFile(downloads_ / "film.mkv", "");
        return scanned("film.mkv.part");
    };
    const auto moved = move(*begin());
    EXPECT_EQ(moved.files.size(), 2U);
    EXPECT_TRUE(fs::is_empty(downloads_));
    EXPECT_EQ(putBack(moved.files).reason, QString());
    EXPECT_TRUE(fs::exists(downloads_ / "film.mkv"));

    const auto half = move(*begin());
    writeFile(downloads_ / "film.mkv", "new");
    const auto result = putBack(half.files);
    EXPECT_NE(result.reason, QString());
    ASSERT_TRUE(result.back.size() == 1 && result.left.size() == 1);
    EXPECT_EQ(result.back[0].bytes, 5U);
    EXPECT_EQ(result.left[0].bytes, 0U);
    fs::remove(downloads_ / "film.mkv");
    EXPECT_EQ(putBack(result.left).reason, QString());
    EXPECT_TRUE(fs::is_empty(trash_ / "info"));

    const auto item = begin();
    writeFile(folder_ / "new", "other");
    fs::rename(folder_ / "new", downloads_ / "film.mkv");
    EXPECT_EQ(refusal(*item), ItemRemoval::replacedText());
    fs::rename(downloads_ / "film.mkv.part", downloads_ / "film.mkv");
    EXPECT_EQ(refusal(*item), ItemRemoval::replacedText());
}

// The folder of the first goes along with it, and the last is refused.
TEST_F(ItemTrash, TellsOfWhatItCouldNotPutBackWhenItFailsHalfWay) {
    writeFile(downloads_ / "folder/file", "12345");
    writeFile(downloads_ / "letter", "1");
    const auto in = [](const fs::path& folder) {
        return engine::FoundIn::in(folder, *files::DirectoryHandle::open(folder), nullptr);
    };
    const auto item = engine::FFItem::initWithName("file", 7);
    item->setDetails(
        {.noteArgument = {},
         .application = {},
         .targets = {{in(downloads_ / "folder"), {"file"}}, {in(downloads_), {"folder", "letter"}, {{}, {1}}}},
         .trashed = {}});
    const auto moved = move(*item);
    EXPECT_EQ(moved.reason, ItemRemoval::replacedText());
    ASSERT_EQ(moved.files.size(), 1U);
    EXPECT_EQ(contentOf(trash_ / "files" / moved.files[0].name), "12345");
    EXPECT_TRUE(fs::is_empty(downloads_ / "folder"));
    EXPECT_EQ(putBack(moved.files).reason, QString());
    EXPECT_EQ(contentOf(downloads_ / "folder/file"), "12345");
}

TEST_F(ItemTrash, LeavesWhatHasComeInThePlaceOfTheItemOrOfItsFolder) {
    writeFile(downloads_ / "file", "12345");
    writeFile(downloads_ / "other", "other");
    const auto item = scanned("file");
    fs::rename(downloads_ / "other", downloads_ / "file");
    EXPECT_EQ(refusal(*item), ItemRemoval::replacedText());
    fs::remove(downloads_ / "file");
    EXPECT_NE(refusal(*item), QString()) << "it is gone";

    writeFile(downloads_ / "file", "12345");
    const auto again = scanned("file");
    fs::rename(downloads_, folder_ / "home/Elsewhere");
    writeFile(downloads_ / "file", "other");
    EXPECT_EQ(refusal(*again), ItemRemoval::exchangedText());
    fs::rename(downloads_, folder_ / "home/New");
    fs::create_directory_symlink(folder_ / "home/Elsewhere", downloads_);
    EXPECT_NE(refusal(*again), QString()) << "a link leads to the folder";
}

TEST_F(ItemTrash, LeavesWhatIsProtectedOrOutsideOfATrial) {
    writeFile(folder_ / "home/Documents/letter", "1");
    writeFile(folder_ / "beside/file", "1");
    const auto itemAt = [&](const fs::path& path) {
        auto item = engine::FFItem::initWithName(path.filename(), 1);
        const auto holder = files::DirectoryHandle::open(path.parent_path());
        EXPECT_TRUE(holder);
        item->setFoundIn(engine::FoundIn::in(path.parent_path(), *holder, nullptr),
                         engine::FFItem::FoundPathKind::folder);
        return item;
    };
    EXPECT_EQ(refusal(*itemAt(folder_ / "home/Documents")), ItemRemoval::withoutSystemText());
    EXPECT_EQ(refusal(*itemAt(folder_ / "beside/file")), ItemRemoval::outsideOfTrialText());
}

TEST_F(ItemTrash, ReplacesNothingThatHasComeToThePlaceMeanwhile) {
    writeFile(downloads_ / "file", "12345");
    const auto moved = move(*scanned("file"));
    writeFile(downloads_ / "file", "new");
    EXPECT_EQ(putBack(moved.files).reason, u"Something else has its name by now, so that it stays in the Trash");
    EXPECT_EQ(contentOf(downloads_ / "file"), "new");
    EXPECT_EQ(contentOf(trash_ / "files/file"), "12345");
    EXPECT_TRUE(fs::exists(trash_ / "info/file.trashinfo")) << "the desktop can still put it back";
    fs::remove(downloads_ / "file");
    EXPECT_EQ(putBack(moved.files).reason, QString());

    const auto again = move(*scanned("file"));
    fs::rename(downloads_, folder_ / "home/Elsewhere");
    fs::create_directory(downloads_);
    EXPECT_EQ(putBack(again.files).reason, ItemRemoval::exchangedText());
    fs::remove(downloads_);
    const auto withoutFolder = putBack(again.files);
    EXPECT_EQ(withoutFolder.reason, u"The folder that held it is not there any more");
    EXPECT_EQ(withoutFolder.left.size(), 1U) << "and may come again";
    fs::rename(folder_ / "home/Elsewhere", downloads_);
    fs::remove(trash_ / "files/file");
    writeFile(trash_ / "files/file", "another one");
    EXPECT_EQ(putBack(again.files).reason, u"It is not in the Trash any more");
    EXPECT_TRUE(fs::exists(trash_ / "files/file") && fs::is_empty(downloads_));
}

// The system wants the right to write to a folder that changes its parent; its owner may give it to himself.
TEST_F(ItemTrash, TakesAnOwnReadOnlyFolderButLeavesAnItemWithoutTheRights) {
    writeFile(downloads_ / "file", "12345");
    writeFile(downloads_ / "read-only/file", "12345");
    const auto movedAndBack = [this](const engine::FFItem& item) {
        const auto before = fingerprint(downloads_);
        const auto moved = move(item);
        const auto mode = fs::status(trash_ / "files/read-only").permissions();
        const auto reason = moved.reason + putBack(moved.files).reason;
        EXPECT_EQ(mode, static_cast<fs::perms>(0555));
        EXPECT_EQ(fingerprint(downloads_), before);
        return reason;
    };
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        giveToNobody(folder_.path());
        fs::permissions(downloads_ / "read-only", static_cast<fs::perms>(0555));
        fs::permissions(downloads_, fs::perms::owner_read | fs::perms::owner_exec);
        becomeNobody();
        const auto item = scanned("file");
        if (const auto reason = refusal(*item); reason != u"Permission denied") {
            return "moved out of a closed folder: " + reason.toStdString();
        }
        fs::permissions(downloads_, fs::perms::owner_all);
        const auto moved = move(*item);
        if (const auto reason = movedAndBack(*scanned("read-only")); !reason.isEmpty()) {
            return "own folder: " + reason.toStdString();
        }
        fs::permissions(downloads_, fs::perms::owner_read | fs::perms::owner_exec);
        const auto reason = putBack(moved.files).reason;
        const bool isInTrash = reason == u"Permission denied" && fs::exists(trash_ / "files/file");
        return isInTrash && !HasFailure() ? "" : "put back or lost: " + reason.toStdString();
    });
}

TEST_F(ItemTrash, UsesTheTrashOfTheVolumeAndNoOneElses) {
    const auto volume = folder_ / "root/volume";
    fs::create_directories(volume);
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        if (const auto reason = keepMountsPrivate(); !reason.empty()) {
            return cannotTry(reason);
        }
        if (::mount("none", volume.c_str(), "tmpfs", 0, "size=1m") != 0) {
            return cannotTry("no mounts");
        }
        fs::create_directories(volume / "my downloads");
        fs::remove(downloads_);
        fs::create_directory_symlink(volume / "my downloads", downloads_);
        const auto user = std::to_string(::getuid());
        const auto placeOf = [&](const std::string& name) {
            writeFile(volume / "my downloads" / name, "12345");
            const auto moved = move(*scanned(name));
            const auto trash = moved.files.empty() ? fs::path() : moved.files[0].trash;
            const auto record = contentOf(trash / "info" / (name + ".trashinfo"));
            const bool isRelative = record.find("\nPath=my%20downloads/" + name + "\n") != std::string::npos;
            return isRelative ? trash.lexically_relative(volume) : fs::path(record + moved.reason.toStdString());
        };
        std::string wrong = placeOf("a") == ".Trash-" + user ? "" : "not in the user's own; ";
        const auto inner = volume / "my downloads/holder/a \\\rpoint";
        fs::create_directories(inner);
        if (::mount("none", inner.c_str(), "tmpfs", 0, "size=1m") != 0) {
            return cannotTry("no mounts");
        }
        writeFile(inner / "file", "12345");
        wrong += refusal(*scanned("holder")).isEmpty() ? "with what is mounted inside; " : "";
        ::umount(inner.c_str());
        fs::create_directory(volume / ".Trash");
        wrong += placeOf("b") == ".Trash-" + user ? "" : "in one where users can touch each other's; ";
        fs::permissions(volume / ".Trash", fs::perms::sticky_bit, fs::perm_options::add);
        wrong += placeOf("c") == ".Trash/" + user ? "" : "not in the shared one; ";
        fs::remove_all(volume / ".Trash");
        fs::remove_all(volume / (".Trash-" + user));
        fs::create_directory_symlink(folder_ / "home", volume / (".Trash-" + user));
        writeFile(volume / "my downloads/d", "12345");
        wrong += refusal(*scanned("d")).isEmpty() ? "through a link; " : "";
        return HasFailure() ? wrong + "not as it was" : wrong;
    });
}

}  // namespace brimvault::tests
