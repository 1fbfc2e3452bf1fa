// Removals with a guard, while another thread exchanges their items for folders that are kept.

#include <gtest/gtest.h>
#include <unistd.h>

#include <functional>
#include <random>
#include <thread>

#include "cleaner-tool/MeddlingGuard.h"
#include "support/NameExchange.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using namespace cleaner;
using files::RemovalEnd;
namespace fs = std::filesystem;

namespace {

constexpr int wantedExchanges = 20'000;
constexpr int wantedRounds = 1000;

void fill(const fs::path& item) {
    for (const char* name : {"one", "inner/two", "inner/more/three"}) {
        writeFile(item / name, "12345");
    }
}

class RemovalRace : public testing::Test {
protected:
    void SetUp() override {
        if (!exchangesNames(folder_.path())) {
            GTEST_SKIP() << "the file system exchanges no names";
        }
        // Both have the same names as what may be removed. No rule keeps the one outside: only that symbolic links are
        // not followed.
        for (const char* name : {"kept", "kept/item", "outside", "outside/item"}) {
            fill(folder_ / name);
        }
        kept_.add(*PinnedFolder::open(folder_.path(), ::getuid()));
        ASSERT_TRUE(kept_.add({folder_ / "kept", Keep::everything}) && kept_.lookUp());
    }

    // Before each answer of the guard the names are exchanged a few times, or not at all.
    files::RemovalOutcome remove(const Exchanger& exchanger, const fs::path& item) {
        ++rounds_;
        int first = -1;
        MeddlingGuard guard(kept_, [&](const files::NodeStatus& /*node*/) {
            constexpr int maxTries = 300;  // some names cannot be exchanged any more
            const int now = exchanger.exchanges();
            const int awaited = now + std::uniform_int_distribution(0, 2)(random_);
            first = first < 0 ? now : first;
            for (int tries = 0; tries < maxTries && exchanger.exchanges() < awaited; ++tries) {
                std::this_thread::yield();
            }
        });
        const auto outcome = files::remove(item, {}, &guard);
        overtaken_ += first >= 0 && exchanger.exchanges() > first ? 1 : 0;
        return outcome;
    }

    [[nodiscard]] bool isEnough(const Exchanger& exchanger) const {
        return exchanger.exchanges() >= wantedExchanges && rounds_ >= wantedRounds;
    }

    // Prepares and removes until there were enough exchanges; after each removal what is kept is complete.
    void race(const Exchanger& exchanger, const fs::path& item, const HeldFolder& held,
              const std::function<void()>& prepare) {
        const auto complete = fingerprint(held.path());
        int gone = 0;
        while (!isEnough(exchanger)) {
            prepare();
            gone += remove(exchanger, item).end == RemovalEnd::gone ? 1 : 0;
            ASSERT_EQ(fingerprint(held.path()), complete) << "round " << rounds_;
        }
        EXPECT_GT(gone, 0) << "nothing was removed in " << rounds_ << " rounds";
        EXPECT_GT(overtaken_, 0) << "no exchange met a removal in " << rounds_ << " rounds";
    }

    // Makes a tree at the name, unless something is there.
    void renew(const fs::path& name) const {
        if (!fs::exists(fs::symlink_status(name))) {
            fill(folder_ / "made");
            ::renameat2(AT_FDCWD, (folder_ / "made").c_str(), AT_FDCWD, name.c_str(), RENAME_NOREPLACE);
            removeTree(folder_ / "made");
        }
    }

    TemporaryFolder folder_;
    KeptFolders kept_{{::getuid(), {::getgid()}}};
    std::mt19937 random_{20240501};
    int rounds_ = 0;
    int overtaken_ = 0;  ///< removals in which names were exchanged after the first question
};

}  // namespace

TEST_F(RemovalRace, OfTheFolderThatHoldsTheItemWithALink) {
    const HeldFolder parent(folder_ / "parent");
    const HeldFolder outside(folder_ / "outside");
    fs::create_directory_symlink(folder_ / "outside", folder_ / "link");
    const Exchanger exchanger(folder_ / "parent", folder_ / "link");
    race(exchanger, folder_ / "parent/item", outside, [&] { renew(parent.path() / "item"); });
}

TEST_F(RemovalRace, OfTheItemWithALink) {
    const HeldFolder outside(folder_ / "outside");
    const Exchanger exchanger(folder_ / "item", folder_ / "link");
    race(exchanger, folder_ / "item", outside, [&] {
        std::error_code there;
        if (!fs::is_symlink(folder_ / "link") && !fs::is_symlink(folder_ / "item")) {
            fs::create_directory_symlink(folder_ / "outside", folder_ / "link", there);
            fs::create_directory_symlink(folder_ / "outside", folder_ / "item", there);
        }
        renew(folder_ / "item");
        renew(folder_ / "link");
    });
}

TEST_F(RemovalRace, OfAnInnerFolderWithALink) {
    const HeldFolder outside(folder_ / "outside");
    const Exchanger exchanger(folder_ / "item/inner", folder_ / "link");
    race(exchanger, folder_ / "item", outside, [&] {
        removeTree(folder_ / "link");
        std::error_code there;
        fs::create_directory_symlink(folder_ / "outside", folder_ / "link", there);
        renew(folder_ / "item");
    });
}

TEST_F(RemovalRace, OfTheItemWithAFolderThatHoldsAKeptOne) {
    fill(folder_ / "holder/section");
    ASSERT_TRUE(kept_.add({folder_ / "holder/section", Keep::itself}) && kept_.lookUp());
    const HeldFolder holder(folder_ / "holder");
    const Exchanger exchanger(folder_ / "item", folder_ / "holder");
    race(exchanger, folder_ / "item", holder, [&] {
        renew(folder_ / "item");
        renew(folder_ / "holder");
    });
}

TEST_F(RemovalRace, OfAnInnerFolderWithOneThatIsKept) {
    const HeldFolder kept(folder_ / "kept");
    fs::create_directory(folder_ / "item");
    const HeldFolder item(folder_ / "item");
    const Exchanger exchanger(folder_ / "item/inner", folder_ / "kept");
    race(exchanger, folder_ / "item", kept, [&] {
        renew(folder_ / "item");
        renew(folder_ / "item/inner");
        renew(folder_ / "kept");
    });
}

// Where nothing may be removed, nothing is, whatever object has the name by then.
TEST_F(RemovalRace, OfAFolderBelowOneThatIsKeptWithAFile) {
    const Exchanger exchanger(folder_ / "kept/inner", folder_ / "kept/one");
    while (!isEnough(exchanger)) {
        ASSERT_EQ(remove(exchanger, folder_ / "kept/inner").end, RemovalEnd::kept) << "round " << rounds_;
    }
    EXPECT_GT(overtaken_, 0);
}

// Exchanged once, at the worst time: after the question for the folder, before it is found to be empty.
TEST_F(RemovalRace, OfAnEmptyFolderWithAnEmptyOneThatIsKept) {
    fs::create_directories(folder_ / "item/inner");
    fs::create_directories(folder_ / "section");
    ASSERT_TRUE(kept_.add({folder_ / "section", Keep::itself}));
    const auto inner = files::statusOf(folder_ / "item/inner")->identity;
    const auto section = files::statusOf(folder_ / "section")->identity;
    int exchanges = 0;
    MeddlingGuard guard(kept_, [&](const files::NodeStatus& node) {
        exchanges += node.identity == inner && exchangeNames(folder_ / "item/inner", folder_ / "section") ? 1 : 0;
    });
    EXPECT_EQ(files::remove(folder_ / "item", {}, &guard).end, RemovalEnd::kept);
    EXPECT_EQ(exchanges, 1);
    EXPECT_EQ(files::statusOf(folder_ / "item/inner")->identity, section);
}

}  // namespace brimvault::tests
