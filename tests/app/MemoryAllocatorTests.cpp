#include <gtest/gtest.h>
#include <jemalloc/jemalloc.h>

#include <memory>

namespace {

template <typename Value>
Value fromAllocator(const char* name) {
    Value value{};
    std::size_t size = sizeof value;
    EXPECT_EQ(::mallctl(name, &value, &size, nullptr, 0), 0) << name;
    return value;
}

// Another allocator, or this one with its defaults, keeps hundreds of megabytes after a scan of very many items.
TEST(MemoryAllocatorTest, GivesBackSoonWhatIsFreedAlsoWhileNothingIsAllocated) {
    const auto before = fromAllocator<std::uint64_t>("thread.allocated");
    const auto some = std::make_unique<char[]>(100'000);
    EXPECT_GE(fromAllocator<std::uint64_t>("thread.allocated"), before + 100'000) << "it is not the program's";
    EXPECT_TRUE(fromAllocator<bool>("background_thread"));
    const auto dirtyFor = fromAllocator<ssize_t>("opt.dirty_decay_ms");
    EXPECT_TRUE(dirtyFor >= 0 && dirtyFor <= 1000) << dirtyFor;
    EXPECT_EQ(fromAllocator<ssize_t>("opt.muzzy_decay_ms"), 0);
}

}  // namespace
