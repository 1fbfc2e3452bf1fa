// What removing a tree would free, as both ways of measuring tell it.

#include "files/trees/ReclaimableSpace.h"

#include <gtest/gtest.h>

#include "files/trees/Inspect.h"
#include "files/trees/Measure.h"
#include "support/FixtureTrees.h"

namespace brimvault::tests {

namespace {

using files::ReclaimableSpace;

std::uint64_t blocksOf(const fs::path& path) { return files::statusOf(path)->allocated; }

ReclaimableSpace measured(const fs::path& item) { return files::measureSpace(item).space; }

ReclaimableSpace inspected(const fs::path& item) {
    const auto folder = files::DirectoryHandle::open(item.parent_path());
    const auto name = item.filename();
    return files::inspectEntry(*folder, {name.c_str(), files::statusOf(item)->kind}, {folder->status()->mount, {}})
        .space;
}

}  // namespace

TEST(ReclaimableSpace, IsThatOfTheBlocksOfFoldersAndOfFilesWithoutOtherNames) {
    const TemporaryFolder folder;
    const auto item = folder / "item";
    writeFile(item / "a/full", std::string(70'000, 'x'));
    writeSparseFile(item / "sparse", 500'000'000);
    writeFile(item / "a/inside", std::string(40'000, 'x'));
    fs::create_hard_link(item / "a/inside", item / "also inside");
    writeFile(item / "outside", std::string(90'000, 'x'));
    fs::create_hard_link(item / "outside", item / "a/outside too");
    fs::create_hard_link(item / "outside", folder / "elsewhere");

    const auto folders = blocksOf(item) + blocksOf(item / "a");
    const auto expected = folders + blocksOf(item / "a/full") + blocksOf(item / "sparse") + blocksOf(item / "a/inside");
    ASSERT_LT(expected, 200'000U);
    ASSERT_GE(expected, 110'000U);
    EXPECT_EQ(measured(item).bytes, expected);
    EXPECT_EQ(inspected(item).bytes, expected);
    for (const auto& shared : {measured(item).shared, inspected(item).shared}) {
        ASSERT_EQ(shared.size(), 1U);
        EXPECT_EQ(shared[0].inode, files::statusOf(folder / "elsewhere")->identity.inode);
        EXPECT_EQ(shared[0].allocated, blocksOf(folder / "elsewhere"));
        EXPECT_EQ(shared[0].names, 2U);
        EXPECT_EQ(shared[0].allNames, 3U);
    }
    EXPECT_EQ(measured(item / "outside").bytes, 0U);
    EXPECT_EQ(measured(folder / "elsewhere").shared.size(), 1U);
}

TEST(ReclaimableSpace, OfTwoTreesCountsAFileOnceBothAreSeen) {
    const TemporaryFolder folder;
    writeFile(folder / "one/file", std::string(50'000, 'x'));
    fs::create_directory(folder / "two");
    fs::create_hard_link(folder / "one/file", folder / "two/file");
    auto both = measured(folder / "one");
    const auto folders = blocksOf(folder / "one") + blocksOf(folder / "two");
    EXPECT_EQ(both.bytes, blocksOf(folder / "one"));
    both.add(measured(folder / "two"));
    both.settle();
    EXPECT_EQ(both.bytes, folders + blocksOf(folder / "one/file"));
    EXPECT_TRUE(both.shared.empty());
}

}  // namespace brimvault::tests
