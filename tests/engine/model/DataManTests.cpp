#include "engine/model/AppItemData.h"
#include "engine/model/DataMan.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <random>
#include <thread>

#include "support/EventLoop.h"
#include "support/HeardNotifications.h"
#include "support/TextPrinting.h"

namespace brimvault::tests {

using namespace engine;

namespace {

void post(const QString& name, const UserInfo& info = {}) {
    NotificationCenter::defaultCenter().post(name, info);
    runPending();
}

std::shared_ptr<FFItem> item(const char* name, quint64 size, bool deletable = true) {
    auto made = FFItem::initWithName(name, size);
    made->setPpbDeletable(deletable);
    return made;
}

std::shared_ptr<AppItemData> application(const std::string& path, quint64 perLanguage) {
    auto made = AppItemData::initWithName(path);
    made->setPpbDeletable(true);
    for (const char* language : {"en", "de", "fr"}) {
        made->addLocalizationItem(std::make_shared<LocalizationItem>(
            LocalizationItem{perLanguage, QString::fromLatin1(language), path + "/Resources/" + language + ".lproj"}));
    }
    return made;
}

const SectionVocabulary applications = vocabulary(Section::languageResources);

const std::map<Section, QString (DataMan::*)() const> subtitles = {{Section::downloads, &DataMan::getSubTitleDwns},
                                                                   {Section::caches, &DataMan::getSubTitleCaches},
                                                                   {Section::trash, &DataMan::getSubTitleTrash},
                                                                   {Section::logs, &DataMan::getSubTitleLogs}};

class FileSectionOfModel : public testing::TestWithParam<Section> {
protected:
    [[nodiscard]] const ItemArray& items() const { return model.itemsOf(GetParam()); }
    [[nodiscard]] QString text() const { return (model.*subtitles.at(GetParam()))(); }

    DataMan model;
    const SectionVocabulary words = vocabulary(GetParam());
    const ItemArray two = {item("a", 1500), item("b", 500, false)};
    const ItemArray three = {item("c", 1), item("d", 2), item("e", 3)};
};

INSTANTIATE_TEST_SUITE_P(DataMan, FileSectionOfModel,
                         testing::Values(Section::downloads, Section::caches, Section::trash, Section::logs));

}  // namespace

TEST_P(FileSectionOfModel, MergesWhatIsPostedAndThenPostsItsTwin) {
    const HeardNotifications heard = {words.interfaceFinished, words.interfaceProgress};
    const auto percent = [](Number number) { return std::pair(QString(key::progressPercent), number); };
    const struct {
        QLatin1String name;
        UserInfo info;
        ItemArray expected;
        const char* subtitle;
    } posts[] = {
        {words.scanFinished, {{words.arrayKey, three}}, three, "6 B of 6 B Selected"},
        {words.scanFinished, {{words.arrayKey, two}}, two, "1.5 KB of 2 KB Selected"},
        {words.scanFinished, {}, {}, "No files found"},
        {words.scanProgress, {{words.deltaKey, two}, percent(10)}, two, "10%. 2 KB found"},
        {words.scanProgress, {{words.deltaKey, three}, percent(20)}, two + three, "20%. 2.01 KB found"},
        {words.scanProgress, {{words.deltaKey, two}, {words.arrayKey, three}, percent(120)}, three, "120%. 6 B found"},
        {words.scanProgress, {{words.deltaKey, Number(3)}, percent(0)}, three, "0%. 6 B found"},
        {words.scanFinished, {{words.arrayKey, two + three}}, two + three, "1.51 KB of 2.01 KB Selected"},
        {words.cleanFinished, {{words.arrayKey, three + ItemArray{item("a", 1500)}}}, two, "1.5 KB of 2 KB Selected"},
        {words.cleanFinished, {}, two, "1.5 KB of 2 KB Selected"},
        {words.scanFinished, {{words.arrayKey, ApplicationArray()}}, {}, "No files found"},
    };
    EXPECT_EQ(text(), QStringLiteral("Not Scanned"));
    QStringList twins;
    for (const auto& [name, info, expected, subtitle] : posts) {
        SCOPED_TRACE(subtitle);
        post(name, info);
        twins.append(name == words.scanProgress ? words.interfaceProgress : words.interfaceFinished);
        EXPECT_EQ(items(), expected);
        EXPECT_EQ(text(), QLatin1String(subtitle));
        EXPECT_EQ(heard.names(), twins);
    }
}

// Sums are kept as items come; whatever happens, they are those of the items that are there, with their marks.
TEST_P(FileSectionOfModel, SumsUpWhatIsThereWhateverComesGoesAndIsTicked) {
    std::mt19937 random(5);
    ItemArray expected;
    for (int round = 0; round < 300; ++round) {
        ItemArray found;
        for (auto count = random() % 20; count > 0; --count) {
            found.append(item("found", random() % 3 * 100, random() % 4 != 0));
        }
        const auto what = random() % 6;
        if (what < 2) {
            post(words.scanProgress, {{words.deltaKey, found}});
            expected += found;
        } else if (what == 2) {
            expected = random() % 2 == 0 ? expected + found : found;
            post(words.scanFinished, {{words.arrayKey, expected}});
        } else if (what < 5) {
            ItemArray gone = expected;
            const auto share = random() % 4 + 1;
            gone.removeIf([&](const auto&) { return random() % 4 >= share; });
            expected.removeIf([&](const auto& there) { return gone.contains(there); });
            gone.prepend(item("never there", 1));
            if (random() % 2 == 0) {
                std::shuffle(gone.begin(), gone.end(), random);
            }
            post(words.cleanFinished, {{words.arrayKey, gone}});
        } else {
            for (const auto& there : std::as_const(expected)) {
                there->setPpbChecked(random() % 3 == 0);
            }
        }
        ASSERT_EQ(items(), expected) << round;
        ItemSums sums;
        for (const auto& there : std::as_const(expected)) {
            sums.add(*there);
        }
        ASSERT_EQ(model.getSize2CleanALL(), sums.all) << round;
        ASSERT_EQ(model.getSize2CleanALLSel(), sums.selected) << round;
        ASSERT_EQ(model.sums(GetParam()).checkstate(), sums.checkstate()) << round;
    }
}

TEST_P(FileSectionOfModel, TakesNothingFromOtherSectionsAndCountsAsScannedAfterProgressWithoutAPercent) {
    for (const Section section : allSections) {
        if (section != GetParam()) {
            const auto other = vocabulary(section);
            post(other.scanFinished, {{words.arrayKey, two}, {other.arrayKey, two}});
            post(other.scanProgress, {{words.deltaKey, two}, {other.deltaKey, two}});
        }
    }
    EXPECT_TRUE(items().isEmpty());
    EXPECT_EQ(text(), QStringLiteral("Not Scanned"));
    post(words.scanProgress, {{words.deltaKey, two}, {key::progressPercent, ItemArray()}});
    EXPECT_EQ(text(), QStringLiteral("1.5 KB of 2 KB Selected"));
}

TEST(DataMan, CountsAnItemThatMayNotBeRemovedInTheTotalAlone) {
    DataMan model;
    const auto unchecked = item("c", 4);
    unchecked->setPpbChecked(false);
    model.setCachesArray(ItemArray{item("a", 1), item("b", 2, false), unchecked});
    model.setLogsArray(ItemArray{item("d", 8)});
    EXPECT_EQ(model.getSize2CleanCaches(), 7U);
    EXPECT_EQ(model.getSize2CleanCachesSel(), 1U);
    EXPECT_EQ(model.getSize2CleanALL(), 15U);
    EXPECT_EQ(model.getSize2CleanALLSel(), 9U);
    EXPECT_EQ(model.getSize2CleanALLSel(true, true, true, true, false), 1U);
    EXPECT_EQ(model.getSize2CleanALLSel(false, false, false, false, true), 8U);
    quint64 all = 0;
    DataMan::getsizeAndSelSize(model.getCachesArray(), &all, nullptr);
    EXPECT_EQ(all, 7U);
}

TEST(DataMan, AnswersNoItemOutsideItsArrayAndEmptiesItSilently) {
    DataMan model;
    EXPECT_EQ(model.getAppItem(0), nullptr);
    model.setApplicationsArray(ApplicationArray{application("/a.app", 1)});
    model.setTrashArray(ItemArray{item("a", 1)});
    EXPECT_NE(model.getAppItem(0), nullptr);
    EXPECT_EQ(model.getAppItem(-1), nullptr);
    EXPECT_EQ(model.getAppItem(model.getAppsCount()), nullptr);
    const HeardNotifications heard = {applications.interfaceProgress, applications.interfaceFinished,
                                      vocabulary(Section::trash).interfaceFinished};
    model.resetAppsArray();
    model.resetTrashArray();
    EXPECT_EQ(model.getAppsCount() + model.getTrashCount(), 0);
    EXPECT_TRUE(heard.names().isEmpty());
}

TEST(DataMan, RecomputesEveryApplicationForTheLanguagesToKeep) {
    DataMan model;
    const HeardNotifications heard = {applications.interfaceProgress};
    model.updateResSizesForApps({QStringLiteral("en")});
    EXPECT_EQ(heard.names(), QStringList{QStringLiteral("NSString* appResScanningProgrInterfaceUpd")});
    post(applications.scanProgress, {{applications.deltaKey, ApplicationArray{application("/a.app", 10)}}});
    EXPECT_EQ(model.getSize2CleanApps(), 20U);
    post(applications.scanFinished,
         {{applications.arrayKey, ApplicationArray{application("/a.app", 10), application("/b.app", 100)}}});
    EXPECT_EQ(model.getSize2CleanApps(), 220U);
    model.updateResSizesForApps({QStringLiteral("en"), QStringLiteral("fr")});
    EXPECT_EQ(model.getSize2CleanApps(), 110U);
    EXPECT_EQ(model.getSubTitleApps(), QStringLiteral("110 B of 110 B Selected"));
    const auto earlier = model.getAppItem(0);
    earlier->addLocalizationItem(
        std::make_shared<LocalizationItem>(LocalizationItem{1000, QStringLiteral("it"), "/a.app/Resources/it.lproj"}));
    model.add2ApplicationsArray(ApplicationArray{application("/c.app", 1)});
    EXPECT_EQ(earlier->getSpace2Save(), 1010U);
    earlier->setPpbDeletable(false);
    model.add2ApplicationsArray(std::nullopt);
    earlier->setPpbDeletable(true);
    model.add2ApplicationsArray(ApplicationArray());
    EXPECT_EQ(earlier->getSpace2SaveBySel(), 1010U);
}

TEST(DataMan, ShowsApplicationsCountedWhileThePercentIsZero) {
    DataMan model;
    const std::pair<UserInfo, const char*> posts[] = {
        {{{key::totalCount, Number(12)}, {key::progressPercent, Number(0)}}, "12 applications found"},
        {{{key::totalCount, Number(0)}, {key::progressPercent, Number(0)}}, "0%. 0 B found"},
        {{{key::progressPercent, Number(0)}}, "0%. 0 B found"},
        {{{key::totalCount, Number(12)}, {key::progressPercent, Number(45)}}, "45%. 0 B found"},
    };
    for (const auto& [info, expected] : posts) {
        post(applications.scanProgress, info);
        EXPECT_EQ(model.getSubTitleApps(), QLatin1String(expected));
    }
    post(applications.scanFinished);
    post(applications.cleanFinished);
    EXPECT_EQ(model.getSubTitleApps(), QStringLiteral("No extra resources found"));
}

TEST(DataMan, MergesWhenTheMainThreadGetsToItAndNothingOnceItIsGone) {
    const auto words = vocabulary(Section::caches);
    const auto postOne = [&] {
        NotificationCenter::defaultCenter().post(words.scanFinished, {{words.arrayKey, ItemArray{item("a", 1)}}});
    };
    {
        const DataMan model;
        std::thread(postOne).join();
        EXPECT_EQ(model.getCachesCount(), 0);
        runPending();
        EXPECT_EQ(model.getCachesCount(), 1);
        postOne();
    }
    runPending();
}

}  // namespace brimvault::tests
