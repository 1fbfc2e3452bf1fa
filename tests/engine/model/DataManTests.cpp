#include "engine/model/AppItemData.h"
#include "engine/model/DataMan.h"

#include <gmock/gmock.h>

#include <QThread>
#include <algorithm>
#include <random>
#include <thread>

#include "support/EventLoop.h"
#include "support/HeardNotifications.h"
#include "support/TextPrinting.h"

namespace brimvault::tests {

using engine::AppItemData;
using engine::ApplicationArray;
using engine::DataMan;
using engine::FFItem;
using engine::ItemArray;
using engine::Number;
using engine::Section;
using engine::SectionVocabulary;
using engine::UserInfo;

namespace {

void post(const QString& name, const UserInfo& info = {}) {
    engine::NotificationCenter::defaultCenter().post(name, info);
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
        made->addLocalizationItem(std::make_shared<engine::LocalizationItem>(engine::LocalizationItem{
            perLanguage, QString::fromLatin1(language), path + "/Resources/" + language + ".lproj"}));
    }
    return made;
}

QString subtitle(const DataMan& model, Section section) {
    switch (section) {
        case Section::languageResources:
            return model.getSubTitleApps();
        case Section::downloads:
            return model.getSubTitleDwns();
        case Section::caches:
            return model.getSubTitleCaches();
        case Section::trash:
            return model.getSubTitleTrash();
        case Section::logs:
            break;
    }
    return model.getSubTitleLogs();
}

const SectionVocabulary applications = engine::vocabulary(Section::languageResources);

class FileSectionOfModel : public testing::TestWithParam<Section> {
protected:
    [[nodiscard]] const ItemArray& items() const { return model.itemsOf(GetParam()); }
    [[nodiscard]] QString text() const { return subtitle(model, GetParam()); }
    void progress(const UserInfo& found, Number percent) const {
        UserInfo info = found;
        info.insert(engine::key::progressPercent, percent);
        post(words.scanProgress, info);
    }

    DataMan model;
    const SectionVocabulary words = engine::vocabulary(GetParam());
    const ItemArray two = {item("a", 1500), item("b", 500, false)};
    const ItemArray three = {item("c", 1), item("d", 2), item("e", 3)};
};

INSTANTIATE_TEST_SUITE_P(DataMan, FileSectionOfModel,
                         testing::Values(Section::downloads, Section::caches, Section::trash, Section::logs));

}  // namespace

TEST_P(FileSectionOfModel, TakesTheFullArrayOfAFinishedScanAndThenPostsItsTwin) {
    const HeardNotifications heard = {words.interfaceFinished, words.interfaceProgress};
    EXPECT_EQ(text(), QStringLiteral("Not Scanned"));
    post(words.scanFinished, {{words.arrayKey, three}});
    post(words.scanFinished, {{words.arrayKey, two}});
    EXPECT_EQ(items(), two);
    EXPECT_EQ(heard.names(), (QStringList{words.interfaceFinished, words.interfaceFinished}));
    EXPECT_EQ(text(), QStringLiteral("1.5 KB of 2 KB Selected"));
}

TEST_P(FileSectionOfModel, IsEmptyAfterAFinishedScanWithoutAnArrayOfItems) {
    post(words.scanFinished, {{words.arrayKey, two}});
    post(words.scanFinished);
    EXPECT_TRUE(items().isEmpty());
    EXPECT_EQ(text(), QStringLiteral("No files found"));
    post(words.scanFinished, {{words.arrayKey, two}});
    post(words.scanFinished, {{words.arrayKey, ApplicationArray()}});
    EXPECT_TRUE(items().isEmpty());
}

TEST_P(FileSectionOfModel, GrowsByDeltasAndIsReplacedByAFullArray) {
    const HeardNotifications heard = {words.interfaceFinished, words.interfaceProgress};
    progress({{words.deltaKey, two}}, 10);
    progress({{words.deltaKey, three}}, 20);
    EXPECT_EQ(items(), two + three);
    EXPECT_EQ(text(), QStringLiteral("20%. 2.01 KB found"));
    progress({{words.deltaKey, two}, {words.arrayKey, three}}, 120);
    EXPECT_EQ(items(), three);
    EXPECT_EQ(text(), QStringLiteral("120%. 6 B found"));
    progress({{words.deltaKey, Number(3)}}, 0);
    EXPECT_EQ(items(), three);
    EXPECT_EQ(text(), QStringLiteral("0%. 6 B found"));
    EXPECT_EQ(heard.names().count(words.interfaceProgress), 4);
    EXPECT_FALSE(heard.has(words.interfaceFinished));
}

TEST_P(FileSectionOfModel, CountsAsScannedAfterProgressWithoutAPercent) {
    post(words.scanProgress, {{words.deltaKey, two}, {engine::key::progressPercent, ItemArray()}});
    EXPECT_EQ(text(), QStringLiteral("1.5 KB of 2 KB Selected"));
}

TEST_P(FileSectionOfModel, LosesExactlyWhatACleanRemoved) {
    const HeardNotifications heard = {words.interfaceFinished};
    post(words.scanFinished, {{words.arrayKey, two + three}});
    two[1]->setPpbChecked(false);
    post(words.cleanFinished, {{words.arrayKey, ItemArray{two[0], three[2], item("d", 2)}}});
    EXPECT_EQ(items(), (ItemArray{two[1], three[0], three[1]}));
    EXPECT_FALSE(items()[0]->ppbChecked());
    post(words.cleanFinished);
    EXPECT_EQ(items().size(), 3);
    EXPECT_EQ(heard.names().size(), 3);
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
        switch (random() % 6) {
            case 0:
            case 1:
                progress({{words.deltaKey, found}}, 50);
                expected += found;
                break;
            case 2:
                expected = random() % 2 == 0 ? expected + found : found;
                post(words.scanFinished, {{words.arrayKey, expected}});
                break;
            case 3:
            case 4: {
                ItemArray gone = {item("never there", 1)};
                const auto share = random() % 4 + 1;
                expected.removeIf([&](const auto& there) {
                    const bool goes = random() % 4 < share;
                    if (goes) {
                        gone.append(there);
                    }
                    return goes;
                });
                if (random() % 2 == 0) {
                    std::shuffle(gone.begin(), gone.end(), random);
                }
                post(words.cleanFinished, {{words.arrayKey, gone}});
                break;
            }
            default:
                for (const auto& there : std::as_const(expected)) {
                    there->setPpbChecked(random() % 3 == 0);
                }
        }
        ASSERT_EQ(items(), expected) << round;
        engine::ItemSums sums;
        for (const auto& there : std::as_const(expected)) {
            sums.add(*there);
        }
        ASSERT_EQ(model.getSize2CleanALL(), sums.all) << round;
        ASSERT_EQ(model.getSize2CleanALLSel(), sums.selected) << round;
        ASSERT_EQ(model.sums(GetParam()).checkstate(), sums.checkstate()) << round;
    }
}

TEST_P(FileSectionOfModel, TakesNothingFromAnotherSectionsNotifications) {
    for (const Section section : engine::allSections) {
        if (section != GetParam()) {
            const auto other = engine::vocabulary(section);
            post(other.scanFinished, {{words.arrayKey, two}, {other.arrayKey, two}});
            post(other.scanProgress, {{words.deltaKey, two}, {other.deltaKey, two}});
        }
    }
    EXPECT_TRUE(items().isEmpty());
    EXPECT_EQ(text(), QStringLiteral("Not Scanned"));
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

TEST(DataMan, AnswersNoItemForAnIndexOutsideItsArray) {
    DataMan model;
    EXPECT_EQ(model.getAppItem(0), nullptr);
    model.setApplicationsArray(ApplicationArray{application("/a.app", 1)});
    EXPECT_NE(model.getAppItem(0), nullptr);
    EXPECT_EQ(model.getAppItem(-1), nullptr);
    EXPECT_EQ(model.getAppItem(model.getAppsCount()), nullptr);
}

TEST(DataMan, ResetsItsArraysSilently) {
    DataMan model;
    model.setApplicationsArray(ApplicationArray{application("/a.app", 1)});
    model.setTrashArray(ItemArray{item("a", 1)});
    const HeardNotifications heard = {applications.interfaceProgress, applications.interfaceFinished,
                                      engine::vocabulary(Section::trash).interfaceFinished};
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
    earlier->addLocalizationItem(std::make_shared<engine::LocalizationItem>(
        engine::LocalizationItem{1000, QStringLiteral("it"), "/a.app/Resources/it.lproj"}));
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
    const auto progress = [](const UserInfo& info) { post(applications.scanProgress, info); };
    progress({{engine::key::totalCount, Number(12)}, {engine::key::progressPercent, Number(0)}});
    EXPECT_EQ(model.getSubTitleApps(), QStringLiteral("12 applications found"));
    progress({{engine::key::totalCount, Number(0)}, {engine::key::progressPercent, Number(0)}});
    EXPECT_EQ(model.getSubTitleApps(), QStringLiteral("0%. 0 B found"));
    progress({{engine::key::progressPercent, Number(0)}});
    EXPECT_EQ(model.getSubTitleApps(), QStringLiteral("0%. 0 B found"));
    progress({{engine::key::totalCount, Number(12)}, {engine::key::progressPercent, Number(45)}});
    EXPECT_EQ(model.getSubTitleApps(), QStringLiteral("45%. 0 B found"));
    post(applications.scanFinished);
    EXPECT_EQ(model.getSubTitleApps(), QStringLiteral("No extra resources found"));
}

TEST(DataMan, KeepsApplicationsThatWereCleanedAndForgetsWhatWentFromThem) {
    DataMan model;
    const HeardNotifications heard = {applications.interfaceFinished};
    model.updateResSizesForApps({QStringLiteral("en")});
    const auto cleaned = application("/a.app", 10);
    const auto untouched = application("/b.app", 100);
    model.setApplicationsArray(ApplicationArray{cleaned, untouched});
    post(applications.cleanFinished);
    EXPECT_EQ(model.getSize2CleanApps(), 220U);
    post(applications.cleanFinished,
         {{engine::key::cleanedApplications,
           engine::CleanedApplications{{"/a.app", {cleaned->pLocalizations()[1]}}, {"/unknown.app", {}}}}});
    EXPECT_EQ(model.getAppsCount(), 2);
    EXPECT_EQ(cleaned->pLocalizations().size(), 2);
    EXPECT_EQ(model.getSize2CleanApps(), 210U);
    EXPECT_EQ(heard.names().size(), 2);
}

TEST(DataMan, MergesOnTheMainThreadWhatAnotherThreadPosted) {
    DataMan model;
    const auto words = engine::vocabulary(Section::caches);
    QThread* mergedOn = nullptr;
    const auto observation = engine::NotificationCenter::defaultCenter().addObserver(
        words.interfaceFinished, [&](const auto&) { mergedOn = QThread::currentThread(); });
    std::thread([&] {
        engine::NotificationCenter::defaultCenter().post(words.scanFinished,
                                                         {{words.arrayKey, ItemArray{item("a", 1)}}});
    }).join();
    EXPECT_EQ(model.getCachesCount(), 0);
    runPending();
    EXPECT_EQ(model.getCachesCount(), 1);
    EXPECT_EQ(mergedOn, QCoreApplication::instance()->thread());
}

TEST(DataMan, DropsWhatItHasNotMergedWhenItGoes) {
    {
        const DataMan model;
        engine::NotificationCenter::defaultCenter().post(engine::vocabulary(Section::caches).scanFinished);
    }
    runPending();
}

}  // namespace brimvault::tests
