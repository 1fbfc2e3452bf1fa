#include "cleaner-tool/KeptFolders.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>

#include "files/DirectoryHandle.h"
#include "support/ChildProcess.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using namespace cleaner;
using files::RemovalEnd;
namespace fs = std::filesystem;

namespace {

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

// The guard's answer for a name in a folder of this machine; nothing is removed.
bool mayGo(const fs::path& folder) {
    static KeptFolders kept = [] {
        KeptFolders system({::getuid(), {::getgid()}});
        for (const auto& path : systemFolders()) {
            EXPECT_TRUE(system.add(path)) << path.path;
        }
        return system;
    }();
    KeptFoldersGuard guard(kept);
    const auto parent = files::DirectoryHandle::open(
        fs::canonical(folder).parent_path(),
        [&](const auto& passed, const auto& status) { return guard.onWay(passed, status); });
    return parent && guard.mayRemove(*files::statusOf(fs::canonical(folder)));
}

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

TEST_F(KeptFolderTree, StaysWhereNothingOnTheWaySaysAnything) {
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

TEST_F(KeptFolderTree, RefusesPathsThatAreNotPlain) {
    const auto item = (folder_ / "free/item").native();
    const std::string zero(1, '\0');
    const std::string inside[] = {item + "/",
                                  item + "/.",
                                  item + "/..",
                                  folder_ / "free/./item",
                                  folder_ / "section/../free/item",
                                  item + zero,
                                  item + zero + "/x",
                                  (folder_ / "free").native() + zero + "/item"};
    for (const auto& path : inside) {
        EXPECT_EQ(refuses(path, EINVAL), "");
    }
    for (const char* path : {"", "item", "free/item", ".", "..", "./item", "/", "//", "/.", "/.."}) {
        EXPECT_FALSE(files::isPlainAbsolute(path)) << path;  // not removed: they lead out of the tree
    }
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

TEST_F(KeptFolderTree, IsKnownWhereItIsMountedOnceMore) {
    fs::create_directories(folder_ / "free/alias");
    fs::create_directories(folder_ / "free/again");
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        if (const auto reason = keepMountsPrivate(); !reason.empty()) {
            return cannotTry(reason);
        }
        open("");  // other mounts from here on
        open("system/open");
        const auto alias = folder_ / "free/alias";
        if (::mount((folder_ / "system").c_str(), alias.c_str(), nullptr, MS_BIND, nullptr) != 0 ||
            ::mount(folder_.path().c_str(), (folder_ / "free/again").c_str(), nullptr, MS_BIND, nullptr) != 0) {
            return cannotTry("no bind mounts");
        }
        const auto again = folder_ / "free/again";
        std::string wrong = refuses(alias) + refuses(alias / "tool") + refuses(alias / "inner");
        wrong += refuses(again / "section") + refuses(again / "holder") + refuses(again / "system/inner/tool");
        wrong += refuses(again / "system");
        // Everything around the mounts is removed, and nothing on them.
        const auto outcome = remove(folder_ / "free");
        if (outcome.end != RemovalEnd::kept || outcome.failure->code != EBUSY) {
            wrong += "a folder with mounts went ";
        }
        return wrong + (fs::exists(folder_ / "free/item") ? "what is beside the mounts stayed" : "");
    });
    EXPECT_TRUE(fs::exists(folder_ / "system/inner/tool") && fs::exists(folder_ / "section/item/file"));
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

TEST_F(KeptFolderTree, HasNoMoreFoldersThanItSays) {
    KeptFolders kept({});
    for (std::size_t count = 1; count <= KeptFolders::maxFolders; ++count) {
        ASSERT_TRUE(kept.add({folder_ / "missing", Keep::itself}));
    }
    EXPECT_FALSE(kept.add({folder_ / "missing", Keep::itself}));
}

// What another user or root owns is removed only in a folder of the user's.
TEST_F(KeptFolderTree, LetsGoWhatLiesInAFolderOfTheUsers) {
    constexpr uid_t other = 4711;
    KeptFolders kept({other, {}});
    ASSERT_TRUE(kept.add({folder_ / "volumes", Keep::deeperMayGo}));
    const auto ends = [&](const char* path) {
        KeptFoldersGuard guard(kept);
        return files::remove(folder_ / path, {}, &guard).end;
    };
    EXPECT_EQ(ends("volumes/volume/item"), RemovalEnd::kept);
    EXPECT_EQ(ends("volumes/volume/missing"), RemovalEnd::kept) << "it tells what is not there";
    if (::chown((folder_ / "volumes/volume").c_str(), other, other) != 0) {
        GTEST_SKIP() << "a folder can be given to nobody";
    }
    EXPECT_EQ(ends("volumes/volume"), RemovalEnd::kept);
    EXPECT_EQ(ends("volumes/volume/missing"), RemovalEnd::gone);
    EXPECT_EQ(ends("volumes/volume/item"), RemovalEnd::gone);
}

// What an administrator has mounted in a home is not the user's.
TEST_F(KeptFolderTree, AsksAnewWhereAnotherMountBegins) {
    constexpr uid_t other = 4711;
    if (::getuid() != 0) {
        GTEST_SKIP() << "only the administrator can mount";
    }
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        if (const auto reason = keepMountsPrivate(); !reason.empty()) {
            return cannotTry(reason);
        }
        const auto home = folder_ / "free";
        for (const char* name : {"disk", "system", "plain"}) {
            writeFile(home / name / "item", "1");
        }
        (void)!::chown(home.c_str(), other, other);
        if (::mount("none", (home / "disk").c_str(), "tmpfs", 0, "mode=755") != 0 ||
            ::mount((folder_ / "system").c_str(), (home / "system").c_str(), nullptr, MS_BIND, nullptr) != 0) {
            return cannotTry("no mounts");
        }
        for (const char* file : {"disk/item", "disk/users/item", "disk/users/deeper/item"}) {
            writeFile(home / file, "1");
        }
        (void)!::chown((home / "disk/users").c_str(), other, other);
        KeptFolders kept({other, {}});
        kept.add(*PinnedFolder::open(home, other));
        const auto goes = [&](const char* path) {
            KeptFoldersGuard guard(kept);
            return files::remove(home / path, {}, &guard).end == RemovalEnd::gone;
        };
        std::string wrong;
        for (const char* path :
             {"disk", "disk/item", "disk/missing", "disk/users", "system/tool", "system/open/item"}) {
            wrong += goes(path) ? std::string(path) + " goes " : "";
        }
        for (const char* path : {"plain", "disk/users/item", "disk/users/deeper"}) {
            wrong += goes(path) ? "" : std::string(path) + " stays ";
        }
        return wrong;
    });
}

// The owner of a folder does not count where the user cannot reach it.
TEST_F(KeptFolderTree, StaysOnAWayThatIsClosedToTheUser) {
    constexpr uid_t other = 4711;
    KeptFolders kept({other, {}});
    ASSERT_TRUE(kept.add({folder_ / "volumes", Keep::deeperMayGo}));
    if (::chown((folder_ / "volumes/volume/item").c_str(), other, other) != 0) {
        GTEST_SKIP() << "a folder can be given to nobody";
    }
    const auto end = [&](const char* path) {
        KeptFoldersGuard guard(kept);
        return files::remove(folder_ / path, {}, &guard).end;
    };
    fs::permissions(folder_ / "volumes/volume", fs::perms::owner_all);
    EXPECT_EQ(end("volumes/volume/item/file"), RemovalEnd::kept);
    EXPECT_EQ(end("volumes/volume/item/missing"), RemovalEnd::kept) << "it tells what is not there";
    fs::permissions(folder_ / "volumes/volume", static_cast<fs::perms>(0711));
    EXPECT_EQ(end("volumes/volume/item/file"), RemovalEnd::gone);
}

// A path that the application asks to keep reveals nothing that the user cannot see.
TEST_F(KeptFolderTree, IsNotLookedUpThroughLinksOrClosedFolders) {
    fs::create_directory_symlink(folder_ / "system/../free/item", folder_ / "section/link");
    fs::create_directories(folder_ / "closed/there");
    if (::chown((folder_ / "closed").c_str(), 4711, 4711) != 0) {
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

TEST(HomeFolders, StayWithWhatHoldsThemAndWhatIsInThemGoes) {
    const TemporaryFolder holder;
    auto folders = sectionFoldersOf(holder / "home");
    KeptFolders kept({::getuid(), {::getgid()}});
    for (const auto& folder : folders) {
        fs::create_directories(folder / "item");
        ASSERT_TRUE(kept.add({folder, Keep::itself}));
    }
    fs::create_directories(holder / "home/item");
    kept.add(*PinnedFolder::open(holder / "home", ::getuid()));
    folders.push_back(holder / "home");
    for (const auto& folder : folders) {
        KeptFoldersGuard first(kept);
        EXPECT_EQ(files::remove(folder, {}, &first).end, RemovalEnd::kept) << folder;
        KeptFoldersGuard holding(kept);
        EXPECT_EQ(files::remove(folder.parent_path(), {}, &holding).end, RemovalEnd::kept) << folder;
        KeptFoldersGuard second(kept);
        EXPECT_EQ(files::remove(folder / "item", {}, &second).end, RemovalEnd::gone) << folder;
    }
}

TEST(SystemFolders, AreKeptWithWhatIsBelowThem) {
    for (const char* path :
         {"/",           "/usr", "/usr/bin", "/usr/lib",      "/usr/bin/env", "/bin/sh",   "/etc",
          "/etc/passwd", "/var", "/var/lib", "/var/lib/dpkg", "/var/tmp",     "/dev/null", "/proc/self/status",
          "/sys",        "/run", "/root",    "/home",         "/boot",        "/tmp",      "/opt",
          "/srv",        "/mnt", "/media"}) {
        EXPECT_TRUE(!fs::exists(path) || !mayGo(path)) << path;
    }
    const TemporaryFolder folder;  // in /tmp, which all users share
    fs::create_directory(folder / "item");
    EXPECT_FALSE(mayGo(folder.path()));
    EXPECT_TRUE(mayGo(folder / "item"));
}

// For names that do not exist in folders of the machine: the guard is given the ancestors, none is looked up.
TEST(SystemFolders, SayOfTheirContentsWhatIsCustomary) {
    constexpr uid_t user = 4711;
    KeptFolders kept({user, {}});
    for (const auto& folder : systemFolders()) {
        ASSERT_TRUE(kept.add(folder));
    }
    const auto contentsMayGo = [&](const fs::path& folder, bool deeper) {
        KeptFoldersGuard guard(kept);
        auto handle = files::DirectoryHandle::open(fs::canonical(folder), [&](const auto& passed, auto status) {
            status.permissions = 0777;  // so that only the kept folders decide
            return guard.onWay(passed, status);
        });
        if (deeper) {
            auto ofUser = *handle->status();
            ofUser.identity = {};
            ofUser.owner = user;
            EXPECT_TRUE(guard.onWay(*handle, ofUser));
        }
        return guard.mayRemove({});
    };
    for (const char* folder : {"/", "/media", "/mnt", "/opt", "/srv", "/tmp", "/var/tmp"}) {
        EXPECT_FALSE(contentsMayGo(folder, false)) << folder;
        EXPECT_TRUE(contentsMayGo(folder, true)) << folder;
    }
    for (const char* folder : {"/usr", "/usr/share", "/etc", "/home", "/root", "/var", "/var/lib", "/dev", "/run"}) {
        EXPECT_FALSE(contentsMayGo(folder, false) || contentsMayGo(folder, true)) << folder;
    }
}

}  // namespace brimvault::tests
