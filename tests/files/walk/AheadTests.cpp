// What is worked out before its turn, by whoever has time.

#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "files/trees/MeasuredFolder.h"
#include "files/walk/AheadOf.h"
#include "support/FixtureTrees.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

TEST(AheadOf, GivesEveryAnswerOnceInOrder) {
    std::atomic<int> calls = 0;
    files::AheadOf<std::size_t> squares(5000, {}, [&](std::size_t number) {
        ++calls;
        return number * number;
    });
    for (std::size_t number = 0; number < 5000; ++number) {
        ASSERT_EQ(squares.take(number), number * number);
    }
    EXPECT_EQ(calls, 5000);
}

TEST(AheadOf, LetsWhoTakesAnAnswerSeeWhyThereIsNone) {
    files::AheadOf<int> answers(100, {}, [](std::size_t number) {
        if (number == 50) {
            throw std::runtime_error("none");
        }
        return static_cast<int>(number);
    });
    for (std::size_t number = 0; number < 100; ++number) {
        if (number == 50) {
            EXPECT_THROW(answers.take(number), std::runtime_error);
        } else {
            EXPECT_EQ(answers.take(number), static_cast<int>(number));
        }
    }
}

namespace {

const auto allSizes = [](const char* /*name*/) { return files::Sizes::wanted; };

std::vector<std::string> listing(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    EXPECT_EQ(files::forEachChild(folder, files::HiddenEntries::skip,
                                  [&](const auto& entry) {
                                      names.emplace_back(entry.name);
                                      return true;
                                  }),
              0);
    return names;
}

}  // namespace

TEST(MeasuredFolder, TellsEveryEntryInTheListingsOrderWithItsSize) {
    const TemporaryFolder folder;
    std::map<std::string, std::uint64_t> expected;
    for (int number = 0; number < 1500; ++number) {
        const std::string name = std::to_string(number);
        const std::string bytes(static_cast<std::size_t>(number % 7), 'x');
        writeFile(number % 3 == 0 ? folder / name : folder / name / "inner/file", bytes);
        expected[name] = bytes.size();
    }
    writeFile(folder / ".hidden", "123");
    std::vector<std::string> told;
    EXPECT_EQ(files::forEachMeasurable(folder.path(), files::HiddenEntries::skip, {}, allSizes,
                                       [&](const files::MeasurableEntry& entry) {
                                           told.emplace_back(entry.name);
                                           EXPECT_EQ(entry.size(), expected.at(entry.name)) << entry.name;
                                           return true;
                                       }),
              0);
    EXPECT_EQ(told, listing(folder.path()));
}

// Helpers may still be at the folders whose sizes nobody asked for when the next are listed; ThreadSanitizer tells.
TEST(MeasuredFolder, MayLeaveEntriesUnmeasuredAndStops) {
    const TemporaryFolder folder;
    for (int number = 0; number < 1100; ++number) {  // more than are listed together
        std::filesystem::create_directory(folder / std::to_string(number));
    }
    int calls = 0;
    EXPECT_EQ(files::forEachMeasurable(folder.path(), files::HiddenEntries::skip, {}, allSizes,
                                       [&](const files::MeasurableEntry& entry) {
                                           ++calls;
                                           EXPECT_TRUE(calls % 500 != 1 || entry.size() == 0);
                                           return calls < 1090;
                                       }),
              0);
    EXPECT_EQ(calls, 1090);
}

// Who opens a folder is seen by those who watch it.
TEST(MeasuredFolder, DoesNotOpenFoldersWhoseSizesAreUnwanted) {
    const TemporaryFolder folder;
    const int watch = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    ASSERT_GE(watch, 0);
    for (int number = 0; number < 20; ++number) {
        writeFile(folder / std::to_string(number) / "file", "12345");
    }
    const auto names = listing(folder.path());  // the others come before the last, and would be worked out before it
    for (const auto& name : names) {
        EXPECT_TRUE(name == names.back() || ::inotify_add_watch(watch, (folder / name).c_str(), IN_OPEN) >= 0);
    }
    std::size_t unwanted = 0;
    EXPECT_EQ(
        files::forEachMeasurable(
            folder.path(), files::HiddenEntries::skip, {},
            [&](const char* name) { return name == names.back() ? files::Sizes::wanted : files::Sizes::unwanted; },
            [&](const files::MeasurableEntry& entry) {
                const bool isWanted = entry.sizes == files::Sizes::wanted;
                unwanted += isWanted ? 0 : 1;
                EXPECT_TRUE(!isWanted || entry.size() == 5);
                return true;
            }),
        0);
    EXPECT_EQ(unwanted, names.size() - 1);
    alignas(inotify_event) std::array<char, 4096> events{};
    EXPECT_EQ(::read(watch, events.data(), events.size()), -1);
    EXPECT_EQ(errno, EAGAIN);
    ::close(watch);
}

}  // namespace brimvault::tests
