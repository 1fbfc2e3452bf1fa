#include "files/StackCollection.h"

#include <gtest/gtest.h>

namespace brimvault::tests {

using files::DirectoryHandle;
using files::FolderReference;
using files::StackCollection;
using files::StackItem;

namespace {

std::unique_ptr<StackItem> folderNamed(const std::string& name) {
    auto root = DirectoryHandle::open("/");
    root->close();
    return std::make_unique<StackItem>(
        FolderReference{std::make_shared<files::VisitedFolder>(name, nullptr), std::move(*root), {}});
}

}  // namespace

TEST(StackCollection, GivesTheLastItemFirst) {
    StackCollection stack;
    EXPECT_EQ(stack.topItem(), nullptr);
    EXPECT_EQ(stack.popItem(), nullptr);
    stack.pushItem(folderNamed("first"));
    stack.pushItem(folderNamed("second"));
    EXPECT_EQ(stack.nDepth(), 2);
    EXPECT_EQ(stack.topItem()->prevItem->fsref.folder->name, "first");
    EXPECT_EQ(stack.popItem()->fsref.folder->name, "second");
    EXPECT_EQ(stack.popItem()->fsref.folder->name, "first");
    EXPECT_EQ(stack.popItem(), nullptr);
    EXPECT_EQ(stack.nDepth(), 0);
}

TEST(StackCollection, IsDestroyedWithoutRecursionHoweverHigh) {
    StackCollection stack;
    for (int count = 0; count < 300'000; ++count) {
        stack.pushItem(folderNamed({}));
    }
    EXPECT_EQ(stack.nDepth(), 300'000);
}

TEST(FolderReference, TakesItsPendingFoldersOneByOneFromTheEnd) {
    const auto item = folderNamed("top");
    item->fsref.pendingFolders = std::string("a\0line\nbreak\0\xff\0", 15);
    EXPECT_EQ(item->fsref.takePendingFolder(), "\xff");
    EXPECT_EQ(item->fsref.takePendingFolder(), "line\nbreak");
    EXPECT_EQ(item->fsref.takePendingFolder(), "a");
    EXPECT_EQ(item->fsref.takePendingFolder(), "");
}

TEST(FolderReference, GivesHalfOfItsPendingFoldersAndKeepsSomeOfSeveral) {
    const auto item = folderNamed("top");
    auto& folder = item->fsref;
    const auto giveHalfOf = [&](const std::string& names) {
        folder.pendingFolders = names;
        const auto given = folder.takeHalfOfPendingFolders();
        EXPECT_EQ(given + folder.pendingFolders, names);
        return given;
    };
    using namespace std::string_literals;
    EXPECT_EQ(giveHalfOf("a\0b\0c\0d\0"s), "a\0b\0"s);
    EXPECT_EQ(giveHalfOf("a\0b\0c\0"s), "a\0"s);
    EXPECT_EQ(giveHalfOf("a\0b\0"s), "a\0"s);
    EXPECT_EQ(giveHalfOf("a very long one\0b\0"s), "a very long one\0"s);
    EXPECT_EQ(giveHalfOf("a\0a very long one\0"s), "a\0"s);
    EXPECT_EQ(giveHalfOf("a\0"s), "a\0"s);
    EXPECT_EQ(giveHalfOf(""), "");
    EXPECT_FALSE(folder.canBeHalved());
    folder.pendingFolders = "a\0"s;
    EXPECT_FALSE(folder.canBeHalved());
    folder.pendingFolders = "a\0b\0"s;
    EXPECT_TRUE(folder.canBeHalved());
}

}  // namespace brimvault::tests
