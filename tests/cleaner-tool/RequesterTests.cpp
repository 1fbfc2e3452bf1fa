#include "cleaner-tool/Requester.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <initializer_list>
#include <random>

#include "cleaner-tool/PinnedFolder.h"
#include "cleaner-tool/SymbolicLinks.h"
#include "cleaner-tool/linux/AccessList.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"

namespace brimvault::tests {

using namespace cleaner;

namespace {

constexpr uid_t user = 4711;
constexpr gid_t ownGroup = 4711;
constexpr gid_t otherGroup = 4712;
constexpr std::uint32_t nobody = 0xFFFFFFFF;

// Sets an access control list with entries for some users and groups.
bool giveRandomList(const fs::path& folder, std::mt19937& random) {
    std::string list(reinterpret_cast<const char*>(&accessListVersion), sizeof accessListVersion);
    const auto add = [&](AccessTag tag, std::uint32_t number) {
        const AccessEntry entry{tag, static_cast<std::uint16_t>(random() % 8), number};
        list.append(reinterpret_cast<const char*>(&entry), sizeof entry);
    };
    const auto addSome = [&](AccessTag tag, std::initializer_list<std::uint32_t> numbers) {
        for (const auto number : numbers) {
            if (random() % 2 == 0) {
                add(tag, number);
            }
        }
    };
    add(AccessTag::owner, nobody);
    addSome(AccessTag::user, {1, user});
    add(AccessTag::owningGroup, nobody);
    addSome(AccessTag::group, {1, otherGroup});
    add(AccessTag::mask, nobody);
    add(AccessTag::others, nobody);
    return ::setxattr(folder.c_str(), accessListName, list.data(), list.size(), 0) == 0;
}

}  // namespace

// The oracle is the kernel: a process with the same IDs tries to enter each folder.
TEST(Requester, MaySearchWhatTheSystemLetsThemSearch) {
    constexpr int folders = 2000;
    const TemporaryFolder folder;
    fs::permissions(folder.path(), fs::perms::all);
    if (::getuid() != 0) {
        GTEST_SKIP() << "only the administrator can make folders of other users";
    }
    std::mt19937 random{20261122};
    int lists = 0;
    std::string answers;
    for (int number = 0; number < folders; ++number) {
        const auto path = folder / std::to_string(number);
        fs::create_directory(path);
        const uid_t owner = random() % 3 == 0 ? user : 1;
        const gid_t groups[] = {1, ownGroup, otherGroup};
        ASSERT_EQ(::chown(path.c_str(), owner, groups[random() % 3]), 0);
        lists += random() % 2 == 0 && giveRandomList(path, random) ? 1 : 0;
        if (random() % 2 == 0) {
            fs::permissions(path, static_cast<fs::perms>(random() % 01000));
        }
        const auto handle = files::DirectoryHandle::open(path);
        const Requester requester{user, {ownGroup, otherGroup}};
        answers.push_back(requester.maySearch(*handle, *handle->status()) ? 'y' : 'n');
    }
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        const gid_t groups[] = {otherGroup};
        if (::setgroups(1, groups) != 0 || ::setgid(ownGroup) != 0 || ::setuid(user) != 0) {
            return cannotTry("another user cannot be had");
        }
        std::string wrong;
        for (int number = 0; number < folders; ++number) {
            const char expected = ::access((folder / std::to_string(number)).c_str(), X_OK) == 0 ? 'y' : 'n';
            wrong += answers[static_cast<std::size_t>(number)] == expected ? "" : std::to_string(number) + " ";
        }
        return wrong;
    });
    EXPECT_GT(lists, folders / 4) << "the file system keeps no access lists";
    EXPECT_GT(std::count(answers.begin(), answers.end(), 'y'), folders / 4);
}

TEST(PinnedFolder, IsTheFolderThatWasThereAndNoLink) {
    const TemporaryFolder folder;
    fs::create_directories(folder / "home/item");
    fs::create_directories(folder / "other/item");
    const auto home = PinnedFolder::open(folder / "home", ::getuid());
    ASSERT_TRUE(home);
    EXPECT_FALSE(PinnedFolder::open(folder / "home", ::getuid() + 1)) << "it is another's";
    const auto isHome = [&](const char* name) { return home->is(*files::statusOf(folder / name)); };
    EXPECT_TRUE(isHome("home") && !isHome("other"));
    fs::rename(folder / "home", folder / "moved");
    fs::create_directory_symlink(folder / "other", folder / "home");
    EXPECT_TRUE(isHome("moved") && !isHome("home"));
    EXPECT_FALSE(PinnedFolder::open(folder / "home", ::getuid()));
    EXPECT_FALSE(PinnedFolder::open(folder / "home/item", ::getuid()));
    EXPECT_FALSE(PinnedFolder::open(folder / "missing", ::getuid()));
}

TEST(PinnedFolder, IsReachedThroughLinksOfTheAdministratorsAlone) {
    if (::getuid() != 0) {
        GTEST_SKIP() << "only the administrator can make such links";
    }
    const TemporaryFolder folder;
    fs::create_directories(folder / "var/home/name");
    fs::create_directories(folder / "users");
    fs::create_directory_symlink("var/home", folder / "home");
    fs::create_directory_symlink("../home/name", folder / "users/name");
    const auto home = folder / "var/home/name";
    for (const auto& path : {home, folder / "home/name", folder / "home//name/", folder / "users/name"}) {
        EXPECT_EQ(withoutSystemLinks(path), home) << path;
    }
    EXPECT_EQ(withoutSystemLinks(folder / "home/missing"), std::nullopt);
    ASSERT_EQ(::lchown((folder / "users/name").c_str(), user, user), 0);
    EXPECT_EQ(withoutSystemLinks(folder / "users/name"), std::nullopt) << "the link is a user's";
    fs::permissions(folder.path(), static_cast<fs::perms>(0775));
    EXPECT_EQ(withoutSystemLinks(folder / "home/name"), std::nullopt) << "others may have put it there";
    EXPECT_EQ(withoutSystemLinks(home), home);
    fs::permissions(folder.path(), static_cast<fs::perms>(0755));
    fs::create_directory_symlink("loop", folder / "loop");
    EXPECT_EQ(withoutSystemLinks(folder / "loop"), std::nullopt);
}

}  // namespace brimvault::tests
