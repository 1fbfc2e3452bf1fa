#include "files/walk/StackCollection.h"

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

}  // namespace brimvault::tests
