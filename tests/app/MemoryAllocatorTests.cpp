#include <gmock/gmock.h>
#include <unistd.h>

#include <QTest>
#include <array>
#include <fstream>
#include <memory>
#include <vector>

namespace {

std::size_t residentBytes() {
    std::ifstream status("/proc/self/statm");
    std::size_t all = 0;
    std::size_t resident = 0;
    status >> all >> resident;
    return resident * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

TEST(MemoryAllocatorTest, GivesBackWhatVeryManyItemsHeldThoughSomeStay) {
    constexpr std::size_t itemCount = 200'000;
    constexpr std::size_t staying = 20'000;  // every so many stay, so that all of it stands between what is held
    using Item = std::array<char, 300>;
    QTest::qWait(500);  // until what others freed is given back
    const auto before = residentBytes();
    std::vector<std::unique_ptr<Item>> items;
    items.reserve(itemCount);
    for (std::size_t item = 0; item < itemCount; ++item) {
        items.push_back(std::make_unique<Item>());
    }
    const auto held = residentBytes() - before;
    ASSERT_GT(held, itemCount * sizeof(Item) / 2);
    for (std::size_t item = 0; item < itemCount; ++item) {
        if (item % staying != staying - 1) {
            items[item].reset();
        }
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return residentBytes() < before + held / 4; }))
        << (residentBytes() - before) << " of " << held << " bytes are still held";
}

}  // namespace
