#include "engine/model/FFItem.h"

#include <gmock/gmock.h>

#include "support/FixtureTrees.h"

namespace brimvault::tests {

using engine::FFItem;

TEST(FFItem, KeepsItsPathWhateverItsName) {
    const auto item = FFItem::initWithPath("/folder/inner/name", 5);
    EXPECT_EQ(item->pfname(), "name");
    EXPECT_EQ(item->pfpath(), "/folder/inner/name");
    item->setPfname("other");
    EXPECT_EQ(item->pfname(), "other");
    EXPECT_EQ(item->pfpath(), "/folder/inner/name");
    item->setPfpath("/elsewhere/other");
    EXPECT_EQ(item->pathBytes(), "/elsewhere/other");
    item->setPfpath({});
    EXPECT_FALSE(item->hasPath());
    EXPECT_TRUE(item->pfpath().empty());
}

TEST(FFItem, TellsPathsApartThatEndAlike) {
    for (const char* path : {"name", "/name", "other name", "/folder/other name", "/name/", "/name/name", ""}) {
        const auto item = FFItem::initWithName("name", 5);
        item->setPfpath(path);
        EXPECT_EQ(item->pathBytes(), path);
    }
}

TEST(FFItem, HoldsOddNamesExactly) {
    for (const auto& name : oddNames()) {
        const auto item = FFItem::initWithPath(std::filesystem::path("/folder") / name, 5);
        EXPECT_EQ(item->pfname().native(), name);
        EXPECT_EQ(item->pathBytes(), "/folder/" + name);
    }
}

}  // namespace brimvault::tests
