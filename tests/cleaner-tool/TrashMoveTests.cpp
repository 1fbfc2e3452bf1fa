#include "cleaner-tool/TrashMove.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>

#include "cleaner-tool/KeptFolders.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"
#include "support/MeddlingGuard.h"
#include "support/NameExchange.h"

namespace brimvault::tests {

using namespace cleaner;

namespace {

std::string localTime() {
    const std::time_t now = std::time(nullptr);
    std::string text(19, '\0');
    EXPECT_EQ(std::strftime(text.data(), text.size() + 1, "%Y-%m-%dT%H:%M:%S", std::localtime(&now)), text.size());
    return text;
}

class TrashMove : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directories(trash_ / "files");
        fs::create_directories(trash_ / "info");
        writeFile(folder_ / "item/file", "1");
        writeFile(folder_ / "system/tool", "1");
        kept_.add(*PinnedFolder::open(folder_.path(), ::getuid()));
        EXPECT_TRUE(kept_.add({folder_ / "system", Keep::everything}));
        modeMask_ = ::umask(077);  // as in the root remover
    }
    void TearDown() override { ::umask(modeMask_); }

    std::optional<fs::path> move(const fs::path& path, uid_t user = ::geteuid()) {
        KeptFoldersGuard guard(kept_);
        return moveToTrash(path, trash_, {user, {}}, guard);
    }

    // Empty when it is refused and nothing has changed.
    std::string refuses(const fs::path& path, uid_t user = ::geteuid()) {
        const auto before = fingerprint(folder_.path());
        const bool moved = move(path, user).has_value();
        return !moved && fingerprint(folder_.path()) == before ? "" : "not refused: " + path.native();
    }

    [[nodiscard]] std::string recordOf(const std::string& name) const {
        return contentOf(trash_ / "info" / (name + ".trashinfo"));
    }

    TemporaryFolder folder_;
    fs::path trash_ = trashOfHome(folder_ / "home");
    KeptFolders kept_{{::getuid(), {::getgid()}}};
    mode_t modeMask_ = 0;
};

}  // namespace

TEST_F(TrashMove, TakesFilesFoldersAndLinksWithARecord) {
    writeFile(folder_ / "file.txt", "12345");
    fs::create_directory_symlink(folder_ / "system", folder_ / "link");
    for (const char* name : {"item", "file.txt", "link"}) {
        const auto head = "[Trash Info]\nPath=" + (folder_ / name).native() + "\nDeletionDate=";
        const auto before = head + localTime() + "\n";
        EXPECT_EQ(move(folder_ / name), trash_ / "files" / name);
        const auto after = head + localTime() + "\n";
        EXPECT_FALSE(fs::exists(fs::symlink_status(folder_ / name)));
        const auto record = recordOf(name);
        EXPECT_TRUE(record.size() == before.size() && before <= record && record <= after) << record;
    }
    EXPECT_EQ(contentOf(trash_ / "files/item/file"), "1");
    EXPECT_EQ(contentOf(trash_ / "files/file.txt"), "12345");
    EXPECT_EQ(fs::read_symlink(trash_ / "files/link"), folder_ / "system");
    EXPECT_TRUE(fs::exists(folder_ / "system/tool"));
    EXPECT_EQ(fs::status(trash_ / "info/item.trashinfo").permissions(), static_cast<fs::perms>(0644));
}

TEST_F(TrashMove, RecordsPathsOfAnyBytes) {
    const std::string name = "100% [a=b];\r\n\t?#\xff\x01-_.~09azAZ";
    writeFile(folder_ / name, "1");
    EXPECT_EQ(move(folder_ / name), trash_ / "files" / name);
    const auto wanted = (folder_ / "100%25%20%5Ba%3Db%5D%3B%0D%0A%09%3F%23%FF%01-_.~09azAZ").native();
    EXPECT_NE(recordOf(name).find("\nPath=" + wanted + "\nDeletionDate="), std::string::npos) << recordOf(name);
}

TEST_F(TrashMove, FindsANameThatIsFreeForItemAndRecord) {
    fs::create_symlink("nowhere", trash_ / "files/a.txt");
    writeFile(trash_ / "files/a.2.txt", "mine");
    writeFile(trash_ / "info/a.3.txt.trashinfo", "mine");
    fs::create_symlink(folder_ / "made", trash_ / "info/a.4.txt.trashinfo");
    fs::create_directories(trash_ / "files/a.5.txt");
    writeFile(folder_ / "a.txt", "12345");
    const auto before = fingerprint(trash_);
    EXPECT_EQ(move(folder_ / "a.txt"), trash_ / "files/a.6.txt");
    auto after = fingerprint(trash_);
    EXPECT_EQ(after.erase("files/a.6.txt") + after.erase("info/a.6.txt.trashinfo"), 2U);
    EXPECT_EQ(after, before);
    EXPECT_FALSE(fs::exists(folder_ / "made"));
}

TEST_F(TrashMove, ShortensNamesThatLeaveNoRoomForTheRecords) {
    for (const auto& name : {std::string(255, 'n'), std::string(251, 'n') + ".txt", "a." + std::string(253, 'n'),
                             "." + std::string(254, 'n'), std::string(120, 'n') + "." + std::string(134, 'e'),
                             std::string(246, 'n'), std::string(245, 'n'), std::string(255, '.')}) {
        for (int round = 0; round < 2; ++round) {
            writeFile(folder_ / name, name);
            const auto place = move(folder_ / name);
            ASSERT_TRUE(place) << name;
            EXPECT_EQ(contentOf(*place), name);
            EXPECT_NE(recordOf(place->filename()), "") << *place;
        }
    }
}

TEST_F(TrashMove, LeavesWhatIsKeptOrNoItem) {
    const auto item = (folder_ / "item").native();
    fs::create_directory_symlink(item, folder_ / "way");
    for (const auto& path : {folder_ / "system", folder_ / "system/tool", folder_.path(), folder_ / "missing",
                             folder_ / "missing/file", folder_ / "way/file", trash_ / "../Trash", fs::path("item"),
                             fs::path(item + "/"), fs::path(item + std::string("\0", 1))}) {
        EXPECT_EQ(refuses(path), "");
    }
}

TEST_F(TrashMove, LeavesNoRecordWhereTheItemCannotBeMoved) {
    EXPECT_EQ(refuses(folder_ / "home"), "");  // holds the trash
    writeFile(folder_ / "other/file", "2");
    const auto before = fingerprint(folder_.path());
    KeptFoldersGuard keeper(kept_);
    MeddlingGuard exchange(&keeper,
                           [&](const auto&) { EXPECT_TRUE(exchangeNames(folder_ / "item", folder_ / "other")); });
    EXPECT_FALSE(moveToTrash(folder_ / "item", trash_, kept_.requester(), exchange));
    EXPECT_TRUE(exchangeNames(folder_ / "item", folder_ / "other"));
    EXPECT_EQ(fingerprint(folder_.path()), before);
    MeddlingGuard take(&keeper, [&](const auto&) { fs::rename(folder_ / "item", folder_ / "elsewhere"); });
    EXPECT_FALSE(moveToTrash(folder_ / "item", trash_, kept_.requester(), take));
    EXPECT_TRUE(fs::exists(folder_ / "elsewhere/file") && fs::is_empty(trash_ / "info"));
}

TEST_F(TrashMove, TakesNothingIntoATrashThatIsMissingAnothersClosedOrALink) {
    fs::permissions(folder_.path(), static_cast<fs::perms>(0755));
    EXPECT_EQ(refuses(folder_ / "item", ::geteuid() + 1), "");
    for (const auto& part : {fs::path("files"), fs::path("info"), fs::path()}) {
        const auto name = part.empty() ? trash_ : trash_ / part;
        fs::rename(name, folder_ / "real");
        EXPECT_EQ(refuses(folder_ / "item"), "") << "without " << name;
        fs::create_directory_symlink(folder_ / "real", name);
        EXPECT_EQ(refuses(folder_ / "item"), "") << "with a link for " << name;
        fs::remove(name);
        fs::rename(folder_ / "real", name);
        fs::permissions(name, fs::perms::owner_read);
        EXPECT_FALSE(move(folder_ / "item")) << "though the user cannot search " << name;
        fs::permissions(name, fs::perms::owner_all);
    }
    EXPECT_TRUE(move(folder_ / "item"));
}

TEST_F(TrashMove, TakesNothingOfAnotherFileSystemNorAMountPoint) {
    fs::create_directories(folder_ / "volume");
    fs::create_directories(folder_ / "point");
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        if (const auto reason = keepMountsPrivate(); !reason.empty()) {
            return cannotTry(reason);
        }
        const auto point = folder_ / "point";
        if (::mount("none", (folder_ / "volume").c_str(), "tmpfs", 0, "size=1m") != 0 ||
            ::mount((folder_ / "item").c_str(), point.c_str(), nullptr, MS_BIND, nullptr) != 0) {
            return cannotTry("no mounts");
        }
        writeFile(folder_ / "volume/item", "1");
        std::string wrong = refuses(folder_ / "volume/item") + refuses(folder_ / "volume") + refuses(point);
        wrong += refuses(point / "file");  // the same file system by another mount: cannot be renamed either
        return wrong;
    });
}

}  // namespace brimvault::tests
