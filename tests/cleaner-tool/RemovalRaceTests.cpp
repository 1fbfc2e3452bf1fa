// Removals with a guard while two names are exchanged: some times before each answer of the guard, and in every second
// round, the storms, by another thread as well.

#include <gtest/gtest.h>
#include <unistd.h>

#include <optional>
#include <random>

#include "cleaner-tool/KeptFolders.h"
#include "support/FixtureTrees.h"
#include "support/MeddlingGuard.h"
#include "support/NameExchange.h"

namespace brimvault::tests {

using namespace cleaner;
using files::RemovalEnd;

namespace {

void fill(const fs::path& item) {
    for (const char* name : {"one", "inner/two", "inner/more/three"}) {
        writeFile(item / name, "12345");
    }
}

struct Race {
    const char* name;
    const char* item;
    const char* exchanged;
    const char* with;
    const char* stays;  ///< complete after each removal, whatever its name is by then
    bool mayGo = true;
};

// No rule keeps the folder "outside": only that symbolic links are not followed.
constexpr Race races[] = {
    {"the folder that holds the item, with a link", "parent/item", "parent", "link", "outside"},
    {"the item, with a link", "parent/item", "parent/item", "link", "outside"},
    {"an inner folder, with a link", "parent/item", "parent/item/inner", "link", "outside"},
    {"the item, with a folder that holds a kept one", "parent/item", "parent/item", "holder", "holder"},
    {"an inner folder, with one that is kept", "parent/item", "parent/item/inner", "kept", "kept"},
    {"a folder below one that is kept, with a file", "kept/inner", "kept/inner", "kept/one", "outside", false},
};

// In a storm a removal may hardly ever get through. All trees have the same names, so that a step into a wrong one
// would find what it looks for.
RemovalEnd removeDuring(const Race& race, std::mt19937& random, bool isStorm) {
    const TemporaryFolder folder(folderInMemory());
    for (const char* tree : {"parent/item", "outside", "outside/item", "kept", "holder/section"}) {
        fill(folder / tree);
    }
    fs::create_directory_symlink(folder / "outside", folder / "link");
    KeptFolders kept({::getuid(), {::getgid()}});
    kept.add(*PinnedFolder::open(folder.path(), ::getuid()));
    EXPECT_TRUE(kept.add({folder / "kept", Keep::everything}) && kept.add({folder / "holder/section", Keep::itself}));
    const HeldFolder stays(folder / race.stays);
    const auto complete = fingerprint(stays.path());
    const auto meddle = [&](const auto& /*node*/) {
        for (int times = std::uniform_int_distribution(0, 2)(random); times > 0; --times) {
            exchangeNames(folder / race.exchanged, folder / race.with);
        }
    };
    KeptFoldersGuard keeper(kept);
    MeddlingGuard guard(&keeper, meddle);
    meddle(files::NodeStatus());
    std::optional<Exchanger> exchanger;
    if (isStorm) {
        exchanger.emplace(folder / race.exchanged, folder / race.with);
    }
    const auto end = files::remove(folder / race.item, {}, &guard).end;
    EXPECT_EQ(fingerprint(stays.path()), complete);
    return end;
}

}  // namespace

TEST(RemovalRace, LosesNothingOfWhatStays) {
    constexpr int rounds = 100;
    const TemporaryFolder folder(folderInMemory());
    if (!exchangesNames(folder.path())) {
        GTEST_SKIP() << "the file system exchanges no names";
    }
    std::mt19937 random{20240501};
    for (const auto& race : races) {
        SCOPED_TRACE(race.name);
        int gone = 0;
        for (int round = 0; round < rounds && !testing::Test::HasFailure(); ++round) {
            gone += removeDuring(race, random, round % 2 == 0) == RemovalEnd::gone ? 1 : 0;
        }
        EXPECT_EQ(gone > 0, race.mayGo);
        EXPECT_LT(gone, rounds) << "no exchange met a removal";
    }
}

// Exchanged once, at the worst time: after the question for the folder, before it is found to be empty.
TEST(RemovalRace, LeavesAnEmptyFolderThatIsKeptInThePlaceOfAnEmptyOne) {
    const TemporaryFolder folder;
    KeptFolders kept({::getuid(), {::getgid()}});
    kept.add(*PinnedFolder::open(folder.path(), ::getuid()));
    fs::create_directories(folder / "item/inner");
    fs::create_directories(folder / "section");
    ASSERT_TRUE(kept.add({folder / "section", Keep::itself}));
    const auto inner = files::statusOf(folder / "item/inner")->identity;
    const auto section = files::statusOf(folder / "section")->identity;
    int exchanges = 0;
    KeptFoldersGuard keeper(kept);
    MeddlingGuard guard(&keeper, [&](const files::NodeStatus& node) {
        exchanges += node.identity == inner && exchangeNames(folder / "item/inner", folder / "section") ? 1 : 0;
    });
    EXPECT_EQ(files::remove(folder / "item", {}, &guard).end, RemovalEnd::kept);
    EXPECT_EQ(exchanges, 1);
    EXPECT_EQ(files::statusOf(folder / "item/inner")->identity, section);
}

}  // namespace brimvault::tests
