#include <gtest/gtest.h>

#include "engine/model/AppItemData.h"
#include "engine/model/FFItem.h"
#include "support/FixtureTrees.h"
#include "support/TextPrinting.h"

namespace brimvault::tests {

using engine::AppItemData;
using engine::FFItem;
using engine::LocalizationItem;

// What real applications lose, and that what is counted goes, is in langres/RandomApplicationsTests.

namespace {

QStringList words(const char* text) { return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts); }

/// One with these localizations, of 10 bytes each, in one folder.
std::shared_ptr<AppItemData> application(const char* languages) {
    auto made = AppItemData::initWithName("/Some.app");
    made->setPpbDeletable(true);
    for (const QString& language : words(languages)) {
        made->addLocalizationItem(std::make_shared<LocalizationItem>(
            LocalizationItem{10, language, "/Some.app/R/" + language.toStdString() + ".lproj"}));
    }
    return made;
}

}  // namespace

TEST(AppItemData, CleansNothingUnlessItIsCheckedAndDeletableAndSomeLanguageIsKept) {
    const auto some = application("en de");
    const struct {
        bool deletable, checked;
        const char* kept;
        quint64 all, selected;
    } examples[] = {
        {true, true, "en", 10, 10}, {false, true, "en", 10, 0}, {true, false, "en", 10, 0},
        {true, true, "", 0, 0},     {true, true, "de", 10, 10}, {true, true, "de en", 0, 0},
    };
    for (const auto& [deletable, checked, kept, all, selected] : examples) {
        some->setPpbDeletable(deletable);
        some->setPpbChecked(checked);
        some->recalcKeepSpaceForLocales(words(kept));
        EXPECT_EQ(some->getSpace2Save(), all) << kept;
        EXPECT_EQ(some->getSpace2SaveBySel(), selected) << kept;
        EXPECT_EQ(some->itemsToClean(words(kept)).isEmpty(), selected == 0) << kept;
    }
}

TEST(AppItemData, LeavesWhatIsKeptLetterByLetterElseTheNearestToTheUsers) {
    const struct {
        const char *found, *kept, *staying;
    } examples[] = {
        {"en EN en-GB", "en", "en"}, {"en-GB de fr", "en", "en-GB"},    {"de fr pt", "en de-AT", "de"},
        {"ja fr", "en de", "fr"},    {"de-AT en-GB", "en de", "en-GB"},
    };
    for (const auto& [found, kept, staying] : examples) {
        const auto some = application(found);
        some->updCleanedLocalizations(some->itemsToClean(words(kept)), words(kept));
        ASSERT_EQ(some->pLocalizations().size(), 1) << found;
        EXPECT_EQ(some->pLocalizations().first()->plocNameId, QLatin1String(staying)) << found;
        EXPECT_EQ(some->getSpace2Save(), 0U) << found;
    }
}

TEST(AppItemData, GroupsByTheFolderInsideTheBundle) {
    const auto some = application("en");
    const auto key = [&](const char* path) { return some->keyForLocalizationItem({1, {}, path}); };
    EXPECT_EQ(key("/Some.app/en.lproj"), "");
    EXPECT_EQ(key("/Some.app/Contents/R/en.lproj"), "/Contents/R");
    EXPECT_EQ(some->ppdisplayName(), QStringLiteral("Some"));
    EXPECT_EQ(some->ppdisplayKeyName(), QStringLiteral("Some"));
}

TEST(FFItem, KeepsItsPathWhateverItsName) {
    const auto item = FFItem::initWithPath("/folder/inner/name", 5);
    EXPECT_EQ(item->pfname(), "name");
    item->setPfname("other");
    EXPECT_EQ(item->pfname(), "other");
    EXPECT_EQ(item->pfpath(), "/folder/inner/name");
    item->setPfpath("/elsewhere/other");
    EXPECT_EQ(item->pathBytes(), "/elsewhere/other");
    item->setPfpath({});
    EXPECT_FALSE(item->hasPath());
    EXPECT_TRUE(item->pfpath().empty());
}

TEST(FFItem, HoldsPathsThatEndAlikeAndOddNamesExactly) {
    for (const char* path : {"name", "/name", "other name", "/folder/other name", "/name/", "/name/name", ""}) {
        const auto item = FFItem::initWithName("name", 5);
        item->setPfpath(path);
        EXPECT_EQ(item->pathBytes(), path);
    }
    for (const auto& name : oddNames()) {
        const auto item = FFItem::initWithPath("/folder/" + name, 5);
        EXPECT_EQ(item->pfname().native(), name);
        EXPECT_EQ(item->pathBytes(), "/folder/" + name);
    }
}

}  // namespace brimvault::tests
