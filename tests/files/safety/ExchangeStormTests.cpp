// A large tree is removed while its folders are exchanged with links to what must not be lost, with folders that lie
// outside, and with each other.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdio.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <random>
#include <stop_token>
#include <string>
#include <thread>

#include "files/trees/Remove.h"
#include "support/ChildProcess.h"
#include "support/NameExchange.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using files::RemovalEnd;
namespace fs = std::filesystem;

namespace {

constexpr int width = 10;   // of the tree: folders in each of the first two levels
constexpr int levels = 16;  // of a chain in it: more folders inside each other than a removal holds open
constexpr auto duration = std::chrono::seconds(3);
constexpr int wantedExchanges = 500;

// A folder reached without a link on the way, so that the storm itself does nothing outside of the tree.
class OpenFolder {
public:
    OpenFolder(int parent, const std::string& name)
        : descriptor(::openat(parent, name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)) {}
    OpenFolder(const OpenFolder&) = delete;
    OpenFolder& operator=(const OpenFolder&) = delete;
    ~OpenFolder() {
        if (descriptor >= 0) {
            ::close(descriptor);
        }
    }
    const int descriptor;
};

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

// "tree" is what is removed; "beside" holds the links, and with them precious files in folders of the tree's names;
// "outside" is what the links lead to.
class Storm {
public:
    explicit Storm(fs::path folder) : folder_(std::move(folder)) {}

    void begin() {
        thread_ = std::jthread([this](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                exchangeSome();
            }
        });
    }
    // From now on nothing changes any more.
    void end() { thread_ = {}; }
    [[nodiscard]] int exchanges() const { return exchanges_; }

private:
    std::string anyName() { return std::to_string(std::uniform_int_distribution(0, width - 1)(random_)); }
    bool oneIn(int count) { return std::uniform_int_distribution(1, count)(random_) == 1; }

    void exchangeSome() {
        const OpenFolder top(AT_FDCWD, (folder_ / "tree").native());
        const OpenFolder beside(AT_FDCWD, (folder_ / "beside").native());
        const OpenFolder one(top.descriptor, anyName());
        const OpenFolder other(top.descriptor, anyName());
        const int place = oneIn(4) ? top.descriptor : one.descriptor;
        switch (std::uniform_int_distribution(0, 3)(random_)) {
            case 0:
                exchangeInChain(one.descriptor, beside.descriptor);
                break;
            case 1:
                exchange(place, anyName(), beside.descriptor, "link" + anyName());
                break;
            case 2:
                exchange(place, anyName(), other.descriptor, anyName());
                break;
            default:  // one of the first level with one of the second
                exchange(top.descriptor, anyName(), other.descriptor, anyName());
        }
    }

    // One of the folders inside each other, with a removal perhaps at work further in.
    void exchangeInChain(int start, int beside) {
        auto place = std::make_unique<OpenFolder>(start, "1");
        for (int level = std::uniform_int_distribution(0, levels - 2)(random_); level > 0; --level) {
            place = std::make_unique<OpenFolder>(place->descriptor, "1");
        }
        exchange(place->descriptor, "1", beside, "link" + anyName());
    }

    void exchange(int place, const std::string& name, int otherPlace, const std::string& otherName) {
        if (::renameat2(place, name.c_str(), otherPlace, otherName.c_str(), RENAME_EXCHANGE) == 0) {
            ++exchanges_;
        }
    }

    fs::path folder_;
    std::mt19937 random_{20};
    std::atomic<int> exchanges_ = 0;
    std::jthread thread_;
};

// New links in the place of those that were used up, or have become folders of a tree.
void renewLinks(const fs::path& folder) {
    for (int number = 0; number < width; ++number) {
        const auto link = folder / "beside" / ("link" + std::to_string(number));
        if (!fs::is_symlink(link)) {
            removeTree(link);
            fs::create_directory_symlink(folder / "outside", link);
        }
    }
}

// Removes trees in the storm. What went wrong.
std::string removeInStorm(const fs::path& folder) {
    Storm storm(folder);
    int kept = 0;
    const auto end = std::chrono::steady_clock::now() + duration;
    while (std::chrono::steady_clock::now() < end) {
        renewLinks(folder);
        fill(folder / "made");  // where no link can come on the way
        fs::rename(folder / "made", folder / "tree");
        storm.begin();
        for (int attempt = 0; attempt < 3; ++attempt) {
            const auto outcome = files::remove(folder / "tree");
            const bool isThere = fs::exists(folder / "tree");
            if ((outcome.end == RemovalEnd::gone) == isThere) {
                return isThere ? "called gone what is still there" : "called kept what is gone";
            }
            kept += isThere ? 1 : 0;
        }
        storm.end();
        if (const auto outcome = files::remove(folder / "tree"); outcome.end != RemovalEnd::gone) {
            return "kept in calm: " + (outcome.failure ? outcome.failure->text() : "");
        }
    }
    if (storm.exchanges() < wantedExchanges || kept == 0) {
        return "no storm to speak of: " + std::to_string(storm.exchanges()) + " exchanges";
    }
    return {};
}

}  // namespace

TEST(ExchangeStorm, InALargeTreeLosesNothingOutside) {
    const TemporaryFolder folder(folderInMemory());
    if (!exchangesNames(folder.path())) {
        GTEST_SKIP() << "the file system exchanges no names";
    }
    fill(folder / "outside");
    fill(folder / "beside");
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
