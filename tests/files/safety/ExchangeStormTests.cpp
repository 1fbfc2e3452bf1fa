// A large tree is removed while its folders are exchanged with links to what must not be lost, with folders that lie
// outside, and with each other; and so are the tree itself and the folder that holds it.

#include <fcntl.h>
#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <stop_token>
#include <string>
#include <thread>

#include "files/FileDescriptor.h"
#include "files/removal/Remove.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"
#include "support/NameExchange.h"

namespace brimvault::tests {

using files::FileDescriptor;
using files::RemovalEnd;

namespace {

constexpr int width = 10;   // of the tree: folders in each of the first two levels
constexpr int levels = 16;  // of a chain in it: more folders inside each other than a removal holds open
constexpr int wantedExchanges = 2000;
constexpr int wantedRounds = 12;

// Reached without a link on the way, so that the storm itself does nothing outside of the tree.
FileDescriptor folderIn(int parent, const std::string& name) {
    return FileDescriptor(::openat(parent, name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

// The same names everywhere, so that a step into a wrong folder would find what it looks for.
void fill(const fs::path& folder) {
    for (int outer = 0; outer < width; ++outer) {
        for (int inner = 0; inner < width; ++inner) {
            writeFile(folder / std::to_string(outer) / std::to_string(inner) / "file", "12345");
        }
        writeFile(folder / std::to_string(outer) / "file", "12345");
    }
    for (int chain = 0; chain < width; chain += 3) {
        auto place = folder / std::to_string(chain);
        for (int level = 0; level < levels; ++level, place /= "1") {
            for (const char* name : {"0/file", "1/file", "2/file"}) {
                writeFile(place / name, "12345");
            }
        }
    }
}

// "parent/tree" is what is removed; "beside" holds the links, and with them precious files in folders of the tree's
// names; "outside" is what the links lead to, "link" among them, which takes the place of the parent.
class Storm {
public:
    explicit Storm(fs::path folder) : folder_(std::move(folder)), parent_(folder_ / "parent") {
        fs::create_directory_symlink("outside", folder_ / "link");
    }

    [[nodiscard]] fs::path tree() const { return parent_.path() / "tree"; }  // whatever the parent's name is

    void begin() {
        thread_ = std::jthread([this](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                exchangeSome();
            }
        });
    }
    // From now on nothing changes any more, and the parent has its name.
    void end() {
        thread_ = {};
        if (fs::is_symlink(folder_ / "parent")) {
            exchangeNames(folder_ / "parent", folder_ / "link");
        }
    }
    [[nodiscard]] int exchanges() const { return exchanges_; }

private:
    int numberBelow(int end) { return std::uniform_int_distribution(0, end - 1)(random_); }
    std::string anyName() { return std::to_string(numberBelow(width)); }
    std::string anyLink() { return "link" + anyName(); }

    void exchangeSome() {
        const auto top = folderIn(AT_FDCWD, tree());
        const auto beside = folderIn(AT_FDCWD, folder_ / "beside");
        const auto one = folderIn(top.number(), anyName());
        const auto other = folderIn(top.number(), anyName());
        const int place = numberBelow(4) == 0 ? top.number() : one.number();
        if (numberBelow(4) == 0) {
            exchangeInChain(one.number(), beside.number());
        } else if (numberBelow(3) == 0) {
            exchange(place, anyName(), beside.number(), anyLink());
        } else {  // with each other, on the same level or not
            exchange(numberBelow(2) == 0 ? place : top.number(), anyName(), other.number(), anyName());
        }
        constexpr int seldom = 200;  // for else nothing would be removed
        if (numberBelow(seldom) == 0) {
            exchangeNames(tree(), folder_ / "beside" / anyLink());
        }
        if (numberBelow(seldom) == 0) {
            exchangeNames(folder_ / "parent", folder_ / "link");
        }
    }

    // One of the folders inside each other, with a removal perhaps at work further in.
    void exchangeInChain(int start, int beside) {
        auto place = folderIn(start, "1");
        for (int level = numberBelow(levels - 1); level > 0; --level) {
            place = folderIn(place.number(), "1");
        }
        exchange(place.number(), "1", beside, anyLink());
    }

    void exchange(int place, const std::string& name, int otherPlace, const std::string& otherName) {
        exchanges_ += ::renameat2(place, name.c_str(), otherPlace, otherName.c_str(), RENAME_EXCHANGE) == 0 ? 1 : 0;
    }

    const fs::path folder_;
    const HeldFolder parent_;
    std::mt19937 random_{20};
    std::atomic<int> exchanges_ = 0;
    std::jthread thread_;
};

// New links in the place of those that were used up, or have become folders of a tree. Every other one is absolute,
// which leads over another mount; the others lead outside from one of the levels.
void renewLinks(const fs::path& folder) {
    std::string up;
    for (int number = 0; number < width; ++number) {
        const auto link = folder / "beside" / ("link" + std::to_string(number));
        up += number % 2 == 0 ? "" : "../";
        if (!fs::is_symlink(link)) {
            removeTree(link);
            fs::create_directory_symlink(number % 2 == 0 ? folder / "outside" : fs::path(up + "outside"), link);
        }
    }
}

// Removes trees in the storm. What went wrong.
std::string removeInStorm(const fs::path& folder) {
    Storm storm(folder);
    const auto isThere = [&] { return fs::exists(fs::symlink_status(storm.tree())); };
    int kept = 0;
    for (int round = 0; round < wantedRounds || storm.exchanges() < wantedExchanges || kept == 0; ++round) {
        renewLinks(folder);
        fill(folder / "made");  // where no link can come on the way
        fs::rename(folder / "made", storm.tree());
        storm.begin();
        for (int attempt = 0; attempt < 5 && isThere(); ++attempt) {
            const auto outcome = files::remove(folder / "parent/tree");
            if ((outcome.end == RemovalEnd::gone) == isThere()) {
                return isThere() ? "called gone what is still there" : "called kept what is gone";
            }
            kept += isThere() ? 1 : 0;
        }
        storm.end();
        if (const auto outcome = files::remove(folder / "parent/tree"); outcome.end != RemovalEnd::gone) {
            return "kept in calm: " + (outcome.failure ? outcome.failure->text() : "");
        }
    }
    return {};
}

}  // namespace

TEST(ExchangeStorm, InALargeTreeLosesNothingOutside) {
    const TemporaryFolder folder(folderInMemory());
    if (!exchangesNames(folder.path())) {
        GTEST_SKIP() << "the file system exchanges no names";
    }
    for (const char* precious : {"outside", "outside/tree", "beside"}) {
        fill(folder / precious);
    }
    const auto outside = fingerprint(folder / "outside");
    const auto beside = fingerprint(folder / "beside");
    EXPECT_WELL_IN_CHILD([&] { return removeInStorm(folder.path()); });
    EXPECT_EQ(fingerprint(folder / "outside"), outside);
    for (int number = 0; number < width; ++number) {
        removeTree(folder / "beside" / ("link" + std::to_string(number)));
        fs::remove(folder / "beside" / ("link" + std::to_string(number)));
    }
    EXPECT_EQ(fingerprint(folder / "beside"), beside);
}

}  // namespace brimvault::tests
