#include <gmock/gmock.h>

#include <algorithm>
#include <random>

#include "engine/model/AppItemData.h"
#include "engine/model/SectionItems.h"
#include "support/FixtureTrees.h"
#include "support/TextPrinting.h"

namespace brimvault::tests {

using namespace engine;

// What real applications lose, and that what is counted goes, is in langres/ApplicationsTests.

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

TEST(FFItem, HoldsPathsThatEndAlikeAndOddNamesExactlyWhateverItsName) {
    const auto item = FFItem::initWithPath("/folder/inner/name", 5);
    EXPECT_EQ(item->pfname(), "name");
    item->setPfname("other");
    EXPECT_EQ(item->pfname(), "other");
    EXPECT_EQ(item->pfpath(), "/folder/inner/name");
    for (const char* path : {"other", "/other", "an other", "/folder/an other", "/other/", "/other/other", ""}) {
        item->setPfpath(path);
        EXPECT_EQ(item->pathBytes(), path);
    }
    EXPECT_FALSE(item->hasPath());
    EXPECT_TRUE(item->pfpath().empty());
    for (const auto& name : oddNames()) {
        const auto odd = FFItem::initWithPath("/folder/" + name, 5);
        EXPECT_EQ(odd->pfname().native(), name);
        EXPECT_EQ(odd->pathBytes(), "/folder/" + name);
    }
}

namespace {

QByteArray ticked(const ItemArray& items) {
    QByteArray marks;
    for (const auto& item : items) {
        marks += item->ppbChecked() ? '+' : '-';
    }
    return marks;
}

bool lies(const FFItem& item, const FFItem& in) {
    const auto inside = item.removalPaths();
    const auto outside = in.removalPaths();
    return std::any_of(inside.begin(), inside.end(), [&](const auto& path) {
        return std::any_of(outside.begin(), outside.end(),
                           [&](const auto& holder) { return path.native().starts_with(holder.native() + "/"); });
    });
}

/// Of one path, or standing for several.
std::shared_ptr<FFItem> itemOf(const QList<std::filesystem::path>& paths) {
    if (paths.size() == 1) {
        return FFItem::initWithPath(paths.first(), 1);
    }
    auto item = FFItem::initWithPath("/r/never removed", 1);
    ItemDetails details;
    for (const auto& path : paths) {
        const FoundIn folder{path.parent_path().native() + "/"};
        details.targets.push_back({std::make_shared<const FoundIn>(folder), {path.filename().native()}});
    }
    item->setDetails(std::move(details));
    return item;
}

// The marks that are to come of these, item by item and without any order: what holds unticked items is not ticked.
QByteArray settled(const ItemArray& items, QByteArray marks) {
    const auto before = marks;
    for (qsizetype holder = 0; holder < items.size(); ++holder) {
        for (qsizetype item = 0; item < items.size(); ++item) {
            if (marks[item] == '-' && lies(*items[item], *items[holder])) {
                marks[holder] = '-';
            }
        }
    }
    return marks == before ? marks : settled(items, marks);
}

// After a click, which goes for what lies in the item as well; nothing ticks what cannot be removed.
QByteArray clicked(const ItemArray& items, qsizetype which, bool checked) {
    auto marks = ticked(items);
    if (checked && !items[which]->ppbDeletable()) {
        return marks;
    }
    for (qsizetype item = 0; item < items.size(); ++item) {
        const bool goesAlong = lies(*items[item], *items[which]) && (!checked || items[item]->mayBeTickedAlong());
        if (item == which || goesAlong) {
            marks[item] = checked ? '+' : '-';
        }
    }
    return settled(items, std::move(marks));
}

}  // namespace

TEST(SectionItems, ClicksBatchesAndRemovalsAgreeWithAReckoningItemByItem) {
    std::mt19937 random(20261122);
    int clicks = 0;
    int saidInVain = 0;
    const auto pick = [&](qsizetype count) { return static_cast<qsizetype>(random()) % count; };
    for (int round = 0; round < 60; ++round) {
        QList<std::string> paths = {"/r"};
        for (int count = 0; count < 60; ++count) {
            const auto name = static_cast<char>('a' + pick(3)) + std::string(pick(4) == 0 ? " " : "");
            const auto path = paths[pick(paths.size())] + "/" + name;
            if (!paths.contains(path)) {
                paths.append(path);
            }
        }
        std::shuffle(paths.begin(), paths.end(), random);
        SectionItems list;
        while (!paths.isEmpty()) {
            ItemArray batch;
            for (auto count = pick(5); count >= 0 && !paths.isEmpty(); --count) {
                QList<std::filesystem::path> ofItem{paths.takeLast()};
                while (round % 2 == 0 && !paths.isEmpty() && pick(4) == 0) {
                    ofItem.append(paths.takeLast());
                }
                batch.append(itemOf(ofItem));
                batch.last()->setNote(pick(8) == 0 ? ItemNote::work : ItemNote::none);
                batch.last()->setPpbChecked(pick(8) != 0);
                batch.last()->setPpbDeletable(pick(8) != 0);
            }
            const auto all = list.items() + batch;
            const auto expected = settled(all, ticked(all));
            list.append(batch);
            ASSERT_EQ(ticked(list.items()), expected);
            for (int click = 0; click < 4; ++click) {
                const auto which = pick(all.size());
                const bool checked = pick(2) == 0;
                const auto after = clicked(all, which, checked);
                auto before = ticked(all);
                const bool others = list.setChecked(*all[which], checked);
                ASSERT_EQ(ticked(all), after) << all[which]->pathBytes() << checked;
                before[which] = after[which];
                ASSERT_TRUE(others || before == after);
                ++clicks;
                saidInVain += others && before == after ? 1 : 0;
            }
            all[pick(all.size())]->setPpbChecked(false);  // one by one, as not by a click
            const auto afterwards = settled(all, ticked(all));
            list.settleMarks();
            ASSERT_EQ(ticked(all), afterwards);
            if (pick(3) == 0) {
                list.remove({list.items()[pick(list.items().size())], list.items()[pick(list.items().size())]});
            }
        }
    }
    EXPECT_LT(saidInVain, clicks / 20);
}

}  // namespace brimvault::tests
