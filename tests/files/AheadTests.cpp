// What is worked out before its turn, by whoever has time.

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "files/AheadOf.h"
#include "files/MeasuredFolder.h"
#include "support/FixtureTrees.h"
#include "support/TemporaryFolder.h"

namespace brimvault::tests {

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
    std::vector<std::string> order;
    EXPECT_EQ(files::forEachChild(folder.path(), files::HiddenEntries::skip,
                                  [&](const auto& entry) {
                                      order.emplace_back(entry.name);
                                      return true;
                                  }),
              0);
    std::vector<std::string> told;
    EXPECT_EQ(files::forEachMeasurable(folder.path(), files::HiddenEntries::skip, {},
                                       [&](const files::MeasurableEntry& entry) {
                                           told.emplace_back(entry.name);
                                           EXPECT_EQ(entry.size(), expected.at(entry.name)) << entry.name;
                                           return true;
                                       }),
              0);
    EXPECT_EQ(told, order);
}

TEST(MeasuredFolder, MayLeaveAnEntryUnmeasuredAndStops) {
    const TemporaryFolder folder;
    for (int number = 0; number < 50; ++number) {
        writeFile(folder / std::to_string(number) / "file", "12345");
    }
    int calls = 0;
    EXPECT_EQ(files::forEachMeasurable(folder.path(), files::HiddenEntries::skip, {},
                                       [&](const files::MeasurableEntry& entry) {
                                           ++calls;
                                           EXPECT_TRUE(calls % 2 == 0 || entry.size() == 5);
                                           return calls < 20;
                                       }),
              0);
    EXPECT_EQ(calls, 20);
}

}  // namespace brimvault::tests
