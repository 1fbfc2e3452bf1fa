#include "engine/model/AppItemData.h"

#include <gtest/gtest.h>

#include <QSet>
#include <map>
#include <random>

#include "support/TextPrinting.h"

namespace brimvault::tests {

using engine::AppItemData;
using engine::LocalizationArray;
using engine::LocalizationItem;

namespace {

const QStringList languages = {QStringLiteral("en"), QStringLiteral("de"), QStringLiteral("fr"), QStringLiteral("ja"),
                               QStringLiteral("pt")};

std::shared_ptr<LocalizationItem> localization(const std::filesystem::path& folder, const QString& language,
                                               quint64 size) {
    return std::make_shared<LocalizationItem>(
        LocalizationItem{size, language, folder / (language.toStdString() + ".lproj")});
}

class RandomApplications {
public:
    explicit RandomApplications(unsigned seed) : random_(seed) {}

    std::shared_ptr<AppItemData> application() {
        auto made = AppItemData::initWithName("/Applications/Some.app");
        made->setPpbDeletable(true);
        for (int count = number(0, 12); count > 0; --count) {
            const auto folder = made->pAppName() / folders_[static_cast<std::size_t>(number(0, 3))];
            made->addLocalizationItem(
                localization(folder, languages[number(0, 4)], static_cast<quint64>(number(0, 1000))));
        }
        return made;
    }
    QStringList needed() {
        QStringList chosen;
        for (int count = number(0, 3); count > 0; --count) {
            chosen.append(languages[number(0, 4)]);
        }
        return chosen;
    }

private:
    int number(int least, int most) { return std::uniform_int_distribution(least, most)(random_); }

    static constexpr const char* folders_[] = {"", "Contents/Resources", "Contents/Resources2", "PlugIns/Resources"};
    std::mt19937 random_;
};

std::map<std::filesystem::path, int> countPerFolder(const LocalizationArray& items) {
    std::map<std::filesystem::path, int> counts;
    for (const auto& item : items) {
        ++counts[item->plocPath.parent_path()];
    }
    return counts;
}

}  // namespace

TEST(AppItemData, NeverEmptiesAFolderAndRemovesExactlyWhatItCounted) {
    RandomApplications random(20240229);
    int cleaned = 0;
    for (int round = 0; round < 5000; ++round) {
        const auto application = random.application();
        const auto needed = random.needed();
        application->recalcKeepSpaceForLocales(needed);
        const auto counted = application->getSpace2Save();
        EXPECT_EQ(application->getSpace2SaveBySel(), counted);

        const auto before = countPerFolder(application->pLocalizations());
        const auto removed = application->itemsToClean(needed);
        quint64 bytes = 0;
        QSet<QString> removedLanguages;
        for (const auto& item : removed) {
            bytes += item->nlocSize;
            removedLanguages.insert(item->plocNameId);
            EXPECT_FALSE(needed.contains(item->plocNameId));
        }
        EXPECT_EQ(bytes, counted);
        EXPECT_EQ(application->cleanableLocsCount(), static_cast<quint64>(removedLanguages.size()));

        application->updCleanedLocalizations(removed, needed);
        const auto after = countPerFolder(application->pLocalizations());
        EXPECT_EQ(after.size(), before.size()) << "a folder was emptied in round " << round;
        EXPECT_EQ(application->getSpace2Save(), 0U);
        EXPECT_TRUE(application->itemsToClean(needed).isEmpty());
        cleaned += removed.isEmpty() ? 0 : 1;
    }
    EXPECT_GT(cleaned, 1000);
}

TEST(AppItemData, FreesNothingWithoutLanguagesToKeep) {
    RandomApplications random(7);
    for (int round = 0; round < 50; ++round) {
        const auto application = random.application();
        application->recalcKeepSpaceForLocales({});
        EXPECT_EQ(application->getSpace2Save(), 0U);
        EXPECT_TRUE(application->itemsToClean({}).isEmpty());
    }
}

TEST(AppItemData, CleansNothingUnlessItIsCheckedAndDeletable) {
    const auto application = AppItemData::initWithName("/Some.app");
    application->addLocalizationItem(localization("/Some.app/R", languages[0], 10));
    application->addLocalizationItem(localization("/Some.app/R", languages[1], 20));
    const QStringList needed = {languages[0]};
    application->recalcKeepSpaceForLocales(needed);
    EXPECT_EQ(application->getSpace2Save(), 20U);
    EXPECT_EQ(application->getSpace2SaveBySel(), 0U);
    EXPECT_TRUE(application->itemsToClean(needed).isEmpty());
    application->setPpbDeletable(true);
    application->recalcKeepSpaceForLocales(needed);
    EXPECT_EQ(application->getSpace2SaveBySel(), 20U);
    EXPECT_EQ(application->itemsToClean(needed).size(), 1);
    application->setPpbChecked(false);
    EXPECT_EQ(application->getSpace2SaveBySel(), 0U);
    EXPECT_TRUE(application->itemsToClean(needed).isEmpty());
}

TEST(AppItemData, ComparesLanguagesLetterByLetter) {
    const auto application = AppItemData::initWithName("/Some.app");
    application->setPpbDeletable(true);
    for (const char* language : {"en", "EN", "en-GB"}) {
        application->addLocalizationItem(localization("/Some.app/R", QString::fromLatin1(language), 1));
    }
    EXPECT_EQ(application->itemsToClean({QStringLiteral("en")}).size(), 2);
}

TEST(AppItemData, LeavesTheNearestToTheUsersWhereNoneIsKept) {
    struct Case {
        const char* found;
        const char* kept;
        const char* staying;
    };
    for (const auto& [found, kept, staying] : {Case{"en-GB de fr", "en", "en-GB"}, Case{"de fr pt", "en de-AT", "de"},
                                               Case{"ja fr", "en de", "fr"}, Case{"de-AT en-GB", "en de", "en-GB"}}) {
        const auto application = AppItemData::initWithName("/Some.app");
        application->setPpbDeletable(true);
        for (const QString& language : QString::fromLatin1(found).split(QLatin1Char(' '))) {
            application->addLocalizationItem(localization("/Some.app/R", language, 1));
        }
        const auto needed = QString::fromLatin1(kept).split(QLatin1Char(' '));
        application->updCleanedLocalizations(application->itemsToClean(needed), needed);
        ASSERT_EQ(application->pLocalizations().size(), 1) << found;
        EXPECT_EQ(application->pLocalizations().first()->plocNameId, QString::fromLatin1(staying)) << found;
    }
}

TEST(AppItemData, GroupsByTheFolderInsideTheBundle) {
    const auto application = AppItemData::initWithName("/Some.app");
    EXPECT_EQ(application->keyForLocalizationItem(*localization("/Some.app", languages[0], 1)), "");
    EXPECT_EQ(application->keyForLocalizationItem(*localization("/Some.app/Contents/R", languages[0], 1)),
              "/Contents/R");
    EXPECT_EQ(application->ppdisplayName(), QStringLiteral("Some"));
    EXPECT_EQ(application->ppdisplayKeyName(), QStringLiteral("Some"));
}

}  // namespace brimvault::tests
