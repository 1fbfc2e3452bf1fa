// The folders of a home that stay whatever is installed, and what may go beside them.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>

#include "cleaner-tool/KeptFolders.h"
#include "support/FixtureTrees.h"

namespace brimvault::tests {

using namespace cleaner;
using files::RemovalEnd;

namespace {

constexpr uid_t other = 4711;  // a user who is not the one of the test

class HomeFolders : public testing::Test {
protected:
    void SetUp() override {
        for (const char* file :
             {".config/app/Cache/item/file", ".config/log", ".local/bin/item/file", ".local/share/app/item/file",
              ".local/share/Trash/files/item/file", ".local/state/app/item/file", ".local/app/item/file",
              ".var/app/org.App/cache/item/file", ".var/app/org.App/cache/tmp/file", ".var/app/org.App/data/app/file",
              "snap/app/common/.cache/item/file", "snap/app/42/.cache/item/file", "snap/app/42/data/file",
              ".mozilla/profile/file", ".ssh/keys/file", ".gnupg/file", "Unterlagen/letter", "log", "go/mod/file"}) {
            writeFile(home_ / file, "1");
        }
        fs::create_directory_symlink("42", home_ / "snap/app/current");
        keepAll();
    }

    // As the tool does when it starts; beside the home everything else may go.
    void keepAll() {
        kept_ = KeptFolders({::getuid(), {::getgid()}});
        kept_.add(*PinnedFolder::open(folder_.path(), ::getuid()));
        for (const auto& folder : sectionFoldersOf(home_)) {
            ASSERT_TRUE(kept_.add({folder, Keep::itself})) << folder;
        }
        for (const auto& folder : foldersOfProgramsIn(home_)) {
            ASSERT_TRUE(kept_.add(folder)) << folder.path;
        }
        ASSERT_TRUE(kept_.lookUp());
    }

    // Has the folder lie elsewhere, with a link in its place.
    void moveAway(const fs::path& folder) {
        fs::rename(home_ / folder, folder_ / folder.filename());
        fs::create_directory_symlink(folder_ / folder.filename(), home_ / folder);
    }

    [[nodiscard]] bool goes(const fs::path& path) {
        KeptFoldersGuard guard(kept_);
        return files::remove(path, {}, &guard).end == RemovalEnd::gone;
    }

    void expectStay(const fs::path& folder, std::initializer_list<const char*> paths) {
        const auto before = fingerprint(folder_.path());
        for (const char* path : paths) {
            EXPECT_FALSE(goes(folder / path)) << path;
        }
        EXPECT_EQ(fingerprint(folder_.path()), before);
    }
    void expectGo(const fs::path& folder, std::initializer_list<const char*> paths) {
        for (const char* path : paths) {
            EXPECT_TRUE(fs::exists(folder / path) && goes(folder / path)) << path;
        }
    }

    TemporaryFolder folder_;
    const fs::path home_ = folder_ / "home";
    KeptFolders kept_{{}};
};

}  // namespace

TEST_F(HomeFolders, StayWithTheFoldersOfEachProgram) {
    expectStay(home_, {".config",
                       ".config/app",
                       ".local",
                       ".local/app",
                       ".local/share",
                       ".local/share/app",
                       ".local/share/Trash",
                       ".local/state",
                       ".local/state/app",
                       ".var",
                       ".var/app",
                       ".var/app/org.App",
                       ".var/app/org.App/cache",
                       ".var/app/org.App/cache/tmp",
                       ".var/app/org.App/data",
                       "snap",
                       "snap/app",
                       "snap/app/common",
                       "snap/app/common/.cache",
                       "snap/app/42",
                       "snap/app/42/.cache",
                       "snap/app/42/data",
                       "snap/app/current",
                       ".mozilla",
                       ".ssh",
                       ".ssh/keys",
                       ".ssh/keys/file",
                       ".ssh/missing",
                       ".gnupg",
                       ".gnupg/file",
                       "Unterlagen",
                       "go"});
    expectGo(home_, {".config/app/Cache", ".config/log", ".local/share/app/item", ".local/share/Trash/files/item",
                     ".local/state/app/item", ".local/app/item", ".var/app/org.App/cache/item",
                     ".var/app/org.App/cache/tmp/file", ".var/app/org.App/data/app", "snap/app/common/.cache/item",
                     "snap/app/42/.cache/item", ".mozilla/profile", "Unterlagen/letter", "log", "go/mod"});
}

TEST_F(HomeFolders, AreKnownWhereALinkLeads) {
    for (const char* folder : {".var", "snap", ".local/share", ".ssh"}) {
        moveAway(folder);
    }
    fs::create_directory(folder_ / "way");
    fs::create_directory_symlink("../share", folder_ / "way/here");
    fs::remove(home_ / ".local/share");
    fs::create_directory_symlink("../../way/./here/../share", home_ / ".local/share");
    keepAll();
    expectStay(folder_.path(),
               {".var", ".var/app", ".var/app/org.App", ".var/app/org.App/cache", ".var/app/org.App/cache/tmp", "snap",
                "snap/app/common/.cache", "share", "share/app", ".ssh", ".ssh/keys/file"});
    expectGo(folder_.path(), {".var/app/org.App/cache/item", "snap/app/42/.cache/item", "share/app/item"});
}

TEST_F(HomeFolders, AreKnownWhateverIsExchangedWhileTheToolRuns) {
    moveAway(".var");
    moveAway("snap");
    fs::remove(home_ / "snap");
    writeFile(home_ / "snap/new/common/.cache/item/file", "1");
    fs::rename(home_, folder_ / "moved");
    fs::create_directory(home_);
    expectStay(folder_.path(), {".var/app/org.App/cache/tmp", ".var/app/org.App", "snap/app/42", "moved/Unterlagen",
                                "moved/.config/app", "moved/.ssh/keys"});
    fs::remove(home_);
    fs::rename(folder_ / "moved", home_);
    expectStay(folder_.path(), {"home/snap/new/common/.cache", "home/snap/new", "snap/app/42"});
    expectGo(folder_.path(), {".var/app/org.App/cache/item"});
}

// Otherwise a refusal would tell whether a folder that the user cannot see exists.
TEST_F(HomeFolders, AreFollowedOnlyToWhatTheUserCanSee) {
    fs::create_directories(folder_ / "closed/there");
    fs::permissions(folder_ / "closed", fs::perms::owner_all);
    if (::chown((folder_ / "closed").c_str(), other, other) != 0) {
        GTEST_SKIP() << "a folder can be given to nobody";
    }
    fs::remove_all(home_ / ".ssh");
    for (const char* way : {"closed/there/../../home/go", "closed/missing/../../home/go"}) {
        fs::create_directory_symlink(folder_ / way, home_ / ".ssh");
        keepAll();
        writeFile(home_ / "go/mod/file", "1");
        expectGo(home_, {"go/mod"});
        fs::remove(home_ / ".ssh");
    }
    fs::create_directory_symlink(".ssh", home_ / ".ssh");
    keepAll();
    expectGo(home_, {".mozilla/profile"});
}

}  // namespace brimvault::tests
