#include "cleaner-tool/KeptFolders.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>

#include "files/DirectoryHandle.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"

namespace brimvault::tests {

using namespace cleaner;
using files::RemovalEnd;

namespace {

constexpr uid_t other = 4711;  // a user who is not the one of the test

class KeptFolderTree : public testing::Test {
protected:
    void SetUp() override {
        fs::permissions(folder_.path(), static_cast<fs::perms>(0755));
        for (const char* file :
             {"free/item/file", "section/item/file", "section/file", "holder/section/file", "holder/other/file",
              "volumes/volume/item/file", "volumes/file", "volumes/user/item/file", "system/tool", "system/inner/tool",
              "system/open/item/file", "system/open/inner/item/file", "system/named/item/file"}) {
            writeFile(folder_ / file, "1");
        }
        open("");
        keep("section", Keep::itself);
        keep("holder/section", Keep::itself);
        keep("volumes", Keep::deeperMayGo);
        keep("volumes/user", Keep::itself);
        keep("system", Keep::everything);
        open("system/open");
        keep("system/named", Keep::itself);
    }

    void keep(const fs::path& path, Keep how) { EXPECT_TRUE(kept_.add({folder_ / path, how})); }
    void open(const fs::path& path) { kept_.add(*PinnedFolder::open((folder_ / path / "").parent_path(), ::getuid())); }

    [[nodiscard]] files::RemovalOutcome remove(const fs::path& path) const {
        KeptFoldersGuard guard(kept_);
        return files::remove(path, {}, &guard);
    }

    // Empty when the removal failed with this error and changed nothing, else what it did instead.
    [[nodiscard]] std::string refuses(const fs::path& path, int code = EPERM) const {
        const auto before = fingerprint(folder_.path());
        const auto outcome = remove(path);
        if (outcome.end != RemovalEnd::kept || fingerprint(folder_.path()) != before) {
            return "not refused: " + path.native();
        }
        return outcome.failure->code == code ? "" : outcome.failure->text() + ": " + path.native();
    }

    [[nodiscard]] RemovalEnd endFor(KeptFolders& kept, const char* path) const {
        KeptFoldersGuard guard(kept);
        return files::remove(folder_ / path, {}, &guard).end;
    }

    // Removes the item and nothing else.
    void expectGoes(const fs::path& path) const {
        auto before = fingerprint(folder_.path());
        EXPECT_EQ(remove(folder_ / path).end, RemovalEnd::gone) << path;
        std::erase_if(before,
                      [&](const auto& entry) { return (entry.first / "").native().starts_with((path / "").native()); });
        EXPECT_EQ(fingerprint(folder_.path()), before) << path;
    }

    TemporaryFolder folder_;
    mutable KeptFolders kept_{{::getuid(), {::getgid()}}};  ///< looked up again for each removal
};

}  // namespace

TEST_F(KeptFolderTree, StaysAsFarAsItIsKept) {
    for (const char* path : {"section", "holder", "holder/section", "volumes", "volumes/volume", "volumes/file",
                             "volumes/user", "system", "system/tool", "system/inner", "system/inner/tool",
                             "system/open", "system/named", "system/named/item", "system/named/item/file"}) {
        EXPECT_EQ(refuses(folder_ / path), "");
    }
    EXPECT_EQ(refuses(folder_.path()), "");
}

TEST_F(KeptFolderTree, LetsGoWhatTheNearestFolderSays) {
    for (const char* path : {"free/item", "free", "section/item/file", "section/item", "section/file", "holder/other",
                             "holder/section/file", "volumes/volume/item", "volumes/user/item", "system/open/item/file",
                             "system/open/item", "system/open/inner"}) {
        expectGoes(path);
    }
}

TEST_F(KeptFolderTree, StaysWhereNothingOnTheWaySaysAnythingOrAFolderCannotBeLookedUp) {
    keep(std::string(300, 'n'), Keep::itself);
    EXPECT_EQ(refuses(folder_ / "free/item"), "");
    kept_ = KeptFolders({::getuid(), {}});
    keep("section", Keep::itself);
    EXPECT_EQ(refuses(folder_ / "section/item"), "");
    EXPECT_EQ(refuses(folder_ / "free"), "");
}

TEST_F(KeptFolderTree, KeepsTheMostThatIsSaidOfAFolder) {
    keep("free", Keep::everything);
    keep("free", Keep::itself);
    open("free");
    EXPECT_EQ(refuses(folder_ / "free/item"), "");
    keep("system/open", Keep::itself);
    expectGoes("system/open/item");
}

TEST_F(KeptFolderTree, IsNotReachedThroughALink) {
    fs::create_directory_symlink(folder_ / "system", folder_ / "free/way");
    fs::create_directory_symlink(folder_ / "free", folder_ / "system/way");
    EXPECT_EQ(refuses(folder_ / "free/way/tool", ENOTDIR), "");
    EXPECT_EQ(refuses(folder_ / "free/way/inner/tool", ENOTDIR), "");
    EXPECT_EQ(refuses(folder_ / "system/way/item", ENOTDIR), "");
    EXPECT_EQ(refuses(folder_ / "system/way"), "");
    expectGoes("free/way");
    fs::create_directory_symlink(folder_ / "section", folder_ / "free/item/way");
    fs::create_symlink(folder_ / "section/file", folder_ / "free/item/link");
    expectGoes("free/item");
}

TEST_F(KeptFolderTree, IsKnownHoweverItIsSpelled) {
    fs::create_directory_symlink("free/item", folder_ / "link");
    ASSERT_TRUE(kept_.add({folder_ / "system/../link", Keep::itself, LinksOnWay::follow}));
    EXPECT_EQ(refuses(folder_ / "free/item"), "");
    EXPECT_EQ(refuses(folder_ / "free"), "");
    expectGoes("free/item/file");
    EXPECT_EQ(refuses(folder_ / "free///item"), "");
    EXPECT_EQ(refuses("//" + (folder_ / "section").native()), "");
    EXPECT_EQ(refuses("/" + (folder_ / "system//tool").native()), "");
}

TEST_F(KeptFolderTree, KnowsAFolderThatIsMadeAnew) {
    ASSERT_TRUE(kept_.lookUp());
    fs::rename(folder_ / "section", folder_ / "free/section");
    EXPECT_EQ(remove(folder_ / "section").end, RemovalEnd::gone);  // its path leads to nothing now
    EXPECT_EQ(refuses(folder_ / "free/section"), "");              // and this is where the folder is
    fs::create_directories(folder_ / "section/item");
    EXPECT_EQ(refuses(folder_ / "section"), "");
    expectGoes("section/item");
}

TEST_F(KeptFolderTree, TakesNoMoreFoldersNorNamesThanItSays) {
    const auto missing = folder_ / "missing";
    auto deep = fs::path("/1");
    while (std::distance(deep.begin(), deep.end()) < 64) {
        deep /= "1";
    }
    KeptFolders kept({});
    EXPECT_FALSE(kept.add({missing, Keep::contentsMayGo})) << "it is not pinned";
    EXPECT_FALSE(kept.add({deep / "1", Keep::itself}));
    EXPECT_TRUE(kept.add({deep, Keep::itself}));
    for (std::size_t count = 4; count <= KeptFolders::maxFolders; ++count) {
        ASSERT_TRUE(kept.add({missing, Keep::itself}));
    }
    EXPECT_FALSE(kept.add({missing, Keep::itself}));
}

// What another user or root owns is removed only in a folder of the user's, which they must be able to reach.
TEST_F(KeptFolderTree, LetsGoWhatLiesInAFolderOfTheUsers) {
    const auto volume = folder_ / "volumes/volume";
    KeptFolders kept({other, {}});
    ASSERT_TRUE(kept.add({folder_ / "volumes", Keep::deeperMayGo}));
    if (::chown((volume / "item").c_str(), other, other) != 0) {
        GTEST_SKIP() << "a folder can be given to nobody";
    }
    fs::permissions(volume, fs::perms::owner_all);
    EXPECT_EQ(endFor(kept, "volumes/volume/item/file"), RemovalEnd::kept);
    EXPECT_EQ(endFor(kept, "volumes/volume/item/missing"), RemovalEnd::kept) << "it tells what is not there";
    fs::permissions(volume, static_cast<fs::perms>(0711));
    EXPECT_EQ(endFor(kept, "volumes/volume/item/file"), RemovalEnd::gone);
    EXPECT_EQ(endFor(kept, "volumes/volume/item"), RemovalEnd::kept);
    EXPECT_EQ(endFor(kept, "volumes/volume/missing"), RemovalEnd::kept) << "it tells what is not there";
    ASSERT_EQ(::chown(volume.c_str(), other, other), 0);
    EXPECT_EQ(endFor(kept, "volumes/volume"), RemovalEnd::kept);
    EXPECT_EQ(endFor(kept, "volumes/volume/missing"), RemovalEnd::gone);
    EXPECT_EQ(endFor(kept, "volumes/volume/item"), RemovalEnd::gone);
}

// What an administrator has mounted in a home is not the user's, and what is kept is known there, too.
TEST_F(KeptFolderTree, AsksAnewWhereAnotherMountBegins) {
    if (::getuid() != 0) {
        GTEST_SKIP() << "only the administrator can mount";
    }
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        if (const auto reason = keepMountsPrivate(); !reason.empty()) {
            return cannotTry(reason);
        }
        const auto home = folder_ / "free";
        for (const char* folder : {"disk", "system", "holder", "plain"}) {
            writeFile(home / folder / "item", "1");
        }
        if (::mount("none", (home / "disk").c_str(), "tmpfs", 0, "mode=755") != 0 ||
            ::mount((folder_ / "system").c_str(), (home / "system").c_str(), nullptr, MS_BIND, nullptr) != 0 ||
            ::mount((folder_ / "holder").c_str(), (home / "holder").c_str(), nullptr, MS_BIND, nullptr) != 0) {
            return cannotTry("no mounts");
        }
        for (const char* file : {"disk/item", "disk/users/item", "disk/users/deeper/item"}) {
            writeFile(home / file, "1");
        }
        for (const auto& folder : {home, home / "disk/users", home / "holder"}) {
            (void)!::chown(folder.c_str(), other, other);
        }
        KeptFolders kept({other, {}});
        kept.add(*PinnedFolder::open(home, other));
        (void)kept.add({folder_ / "holder/section", Keep::itself});
        std::string wrong;
        for (const char* path : {"free/disk", "free/disk/item", "free/disk/missing", "free/disk/users",
                                 "free/system/tool", "free/system/open/item", "free/holder/section"}) {
            wrong += endFor(kept, path) == RemovalEnd::gone ? std::string(path) + " goes " : "";
        }
        for (const char* path :
             {"free/plain", "free/disk/users/item", "free/disk/users/deeper", "free/holder/section/file"}) {
            wrong += endFor(kept, path) == RemovalEnd::gone ? "" : std::string(path) + " stays ";
        }
        return wrong;
    });
}

// A path that the application asks to keep reveals nothing that the user cannot see.
TEST_F(KeptFolderTree, IsNotLookedUpThroughLinksOrClosedFolders) {
    fs::create_directory_symlink(folder_ / "system/../free/item", folder_ / "section/link");
    fs::create_directories(folder_ / "closed/there");
    if (::chown((folder_ / "closed").c_str(), other, other) != 0) {
        GTEST_SKIP() << "a folder can be given to nobody";
    }
    fs::permissions(folder_ / "closed", fs::perms::owner_all);
    const std::string tooLong(300, 'n');
    for (const auto& path : {folder_ / "section/link", folder_ / "section/link/file",
                             folder_ / "closed/there" / tooLong, folder_ / "closed/missing" / tooLong}) {
        ASSERT_TRUE(kept_.add({path, Keep::itself}));
    }
    EXPECT_TRUE(kept_.lookUp());
    EXPECT_EQ(refuses(folder_ / "closed"), "") << "what can be seen of the way is kept";
    expectGoes("free/item");
}

// For names that do not exist in folders of the machine: the guard is given the ancestors, none is looked up.
TEST(SystemFolders, AreKeptAndSayOfTheirContentsWhatIsCustomary) {
    KeptFolders kept({other, {}});
    for (const auto& folder : systemFolders()) {
        ASSERT_TRUE(kept.add(folder)) << folder.path;
    }
    ASSERT_TRUE(kept.lookUp());
    const auto contentsMayGo = [&](const fs::path& folder, bool deeper) {
        KeptFoldersGuard guard(kept);
        auto handle = files::DirectoryHandle::open(fs::canonical(folder), [&](const auto& passed, auto status) {
            status.permissions = 0777;  // so that only the kept folders decide
            return guard.onWay(passed, status);
        });
        if (deeper) {
            auto ofUser = *handle->status();
            ofUser.identity = {};
            ofUser.owner = other;
            EXPECT_TRUE(guard.onWay(*handle, ofUser));
        }
        return guard.mayRemove({});
    };
    for (const char* folder : {"/", "/media", "/mnt", "/opt", "/srv", "/tmp", "/var/tmp"}) {
        EXPECT_TRUE(kept.keepOf(*files::statusOf(fs::canonical(folder)))) << folder;
        EXPECT_FALSE(contentsMayGo(folder, false)) << folder;
        EXPECT_TRUE(contentsMayGo(folder, true)) << folder;
    }
    for (const char* folder : {"/bin", "/boot", "/dev", "/etc", "/home", "/lib", "/proc", "/root", "/run", "/sbin",
                               "/sys", "/usr", "/usr/share", "/var", "/var/lib"}) {
        EXPECT_FALSE(contentsMayGo(folder, false) || contentsMayGo(folder, true)) << folder;
    }
}

}  // namespace brimvault::tests
