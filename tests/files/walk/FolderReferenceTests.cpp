#include "files/walk/FolderReference.h"

#include <gtest/gtest.h>

#include <utility>

namespace brimvault::tests {

using files::DirectoryHandle;
using files::FolderReference;

namespace {

DirectoryHandle openRoot() { return std::move(*DirectoryHandle::open("/")); }

FolderReference folderOnTop() { return {std::make_shared<files::VisitedFolder>("top", nullptr), openRoot(), {}}; }

}  // namespace

TEST(FolderReference, TakesItsPendingFoldersOneByOneFromTheEnd) {
    auto folder = folderOnTop();
    folder.pendingFolders = std::string("a\0line\nbreak\0\xff\0", 15);
    EXPECT_EQ(folder.takePendingFolder(), "\xff");
    EXPECT_EQ(folder.takePendingFolder(), "line\nbreak");
    EXPECT_EQ(folder.takePendingFolder(), "a");
    EXPECT_EQ(folder.takePendingFolder(), "");
}

TEST(FolderReference, GivesHalfOfItsPendingFoldersAndKeepsSomeOfSeveral) {
    auto folder = folderOnTop();
    const auto giveHalfOf = [&](const std::string& names) {
        folder.pendingFolders = names;
        const auto given = folder.takeHalf(openRoot()).pendingFolders;
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
