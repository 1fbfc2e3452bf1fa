// Removal while another thread exchanges what it works on for links to what must not be lost.

#include <gtest/gtest.h>

#include <functional>

#include "files/trees/Measure.h"
#include "files/trees/Remove.h"
#include "support/NameExchange.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

namespace fs = std::filesystem;

namespace {

constexpr int wantedExchanges = 4000;

void fill(const fs::path& item) {
    for (const char* name : {"one", "inner/two", "inner/more/three", "other/four"}) {
        writeFile(item / name, "12345");
    }
}

class RemoveRace : public testing::Test {
protected:
    void SetUp() override {
        // What the exchanged links lead to has the same names as what may go.
        fill(folder_ / "outside/item");
        fill(folder_ / "outside");
        before_ = fingerprint(folder_ / "outside");
        if (!exchangesNames(folder_.path())) {
            GTEST_SKIP() << "the file system exchanges no names";
        }
    }
    void TearDown() override { EXPECT_EQ(fingerprint(folder_ / "outside"), before_); }

    // Rounds of removing while the names are exchanged, until there were enough exchanges.
    static void race(const Exchanger& exchanger, const std::function<void()>& round) {
        while (exchanger.exchanges() < wantedExchanges) {
            round();
        }
    }

    TemporaryFolder folder_;
    SampleHome::Fingerprint before_;
};

}  // namespace

TEST_F(RemoveRace, OfTheFolderThatHoldsTheItemLosesNothingOutside) {
    const HeldFolder parent(folder_ / "parent");
    fs::create_directory_symlink(folder_ / "outside", folder_ / "link");
    const Exchanger exchanger(folder_ / "parent", folder_ / "link");
    race(exchanger, [&] {
        fill(parent.path() / "item");
        (void)files::remove(folder_ / "parent/item");
        (void)files::measureItem(folder_ / "parent/item");
    });
}

TEST_F(RemoveRace, OfTheItemLosesNothingOutside) {
    fs::create_directory(folder_ / "parent");
    const auto item = folder_ / "parent/item";
    const auto link = folder_ / "link";
    const Exchanger exchanger(item, link);
    race(exchanger, [&] {
        std::error_code there;  // after a removal one of the two names is free: the folder's or the link's
        if (!fs::exists(fs::symlink_status(item))) {
            if (fs::is_symlink(link)) {
                const HeldFolder made(folder_ / "made");
                fill(made.path());
                fs::rename(folder_ / "made", item);
            } else {
                fs::create_directory_symlink(folder_ / "outside", item, there);
            }
        }
        if (!fs::exists(fs::symlink_status(link))) {
            fs::create_directory_symlink(folder_ / "outside", link, there);
        }
        (void)files::remove(item);
    });
}

TEST_F(RemoveRace, OfAFolderInsideLosesNothingOutside) {
    const auto inner = folder_ / "parent/item/inner";
    const auto link = folder_ / "link";
    fs::create_directory(folder_ / "parent");
    const Exchanger exchanger(inner, link);
    race(exchanger, [&] {
        if (fs::is_symlink(link)) {
            fs::remove(link);
        }
        removeTree(link);
        fs::create_directory_symlink(folder_ / "outside", link);
        const HeldFolder made(folder_ / "made");
        fill(made.path());
        fs::rename(folder_ / "made", folder_ / "parent/item");
        while (fs::exists(folder_ / "parent/item")) {
            (void)files::remove(folder_ / "parent/item");
        }
    });
}

}  // namespace brimvault::tests
