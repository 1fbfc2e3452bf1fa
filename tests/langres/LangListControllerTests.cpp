#include "langres/LangListController.h"

#include <gmock/gmock.h>

#include <QRegularExpression>

#include "platform/LocaleIdentifiers.h"
#include "support/TextPrinting.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using langres::LangListController;
using langres::LanguagesManager;
using platform::UserDefaults;

namespace {

QStringList words(const char* text) { return QString::fromUtf8(text).split(QLatin1Char(' '), Qt::SkipEmptyParts); }

class LanguagesList : public testing::Test {
protected:
    [[nodiscard]] std::unique_ptr<LangListController> list(const char* preferred, const char* keyboards = "",
                                                           bool offersCommonLanguages = false) {
        defaults_ = std::make_unique<UserDefaults>(file_);
        told_.clear();
        const LanguagesManager languages({words(preferred), words(keyboards), offersCommonLanguages});
        return std::make_unique<LangListController>(languages, *defaults_,
                                                    [this](const QStringList& needed) { told_.push_back(needed); });
    }

    // The rows by the names of their flags.
    static QStringList rowsOf(const LangListController& list) {
        QStringList rows;
        for (int row = 0; row < list.rowCount(); ++row) {
            rows.append(list.getIconforRow(row));
        }
        return rows;
    }
    static QStringList checkedOf(const LangListController& list) {
        QStringList rows;
        for (int row = 0; row < list.rowCount(); ++row) {
            const auto state = list.data(list.index(row, LangListController::checkColumn), Qt::CheckStateRole);
            EXPECT_EQ(state.toInt() == Qt::Checked, list.getLangNeededState(row));
            if (list.getLangNeededState(row)) {
                rows.append(list.getIconforRow(row));
            }
        }
        return rows;
    }
    static bool check(LangListController& list, int row, bool checked) {
        return list.setData(list.index(row, LangListController::checkColumn), checked ? Qt::Checked : Qt::Unchecked,
                            Qt::CheckStateRole);
    }

    TemporaryFolder folder_;
    const std::filesystem::path file_ = folder_ / "settings/defaults.ini";
    std::unique_ptr<UserDefaults> defaults_;
    std::vector<QStringList> told_;
};

const char* const commonWithoutEnglish =
    "FR DE ZH-HANS ZH-HANT JA ES IT NL KO PT PT-PT DA FI NB SV RU PL TR AR TH CS HU CA HR EL HE RO SK UK ID MS VI";

}  // namespace

TEST_F(LanguagesList, OffersWhatTheUserUsesAndChecksWhatIsUsedEvidently) {
    const struct {
        const char *preferred, *keyboards, *stored, *rows, *checked, *needed;
    } examples[] = {
        {"de-DE en", "", "", "EN DE-DE", "EN DE-DE", "en de-DE"},
        {"en-US", "", "", "EN", "EN", "en en-US"},
        {"en-US fr", "", "", "EN FR", "EN FR", "en en-US fr"},
        {"en fr", "", "", "EN FR", "EN", "en"},
        {"fr en it en-GB", "", "", "EN FR IT", "EN FR", "en fr en-GB"},
        {"it fr de", "", "", "EN IT FR DE", "EN IT FR DE", "en it fr de"},
        {"en", "ru zh-Hans en-AU", "", "EN RU ZH-HANS", "EN RU ZH-HANS", "en ru zh-Hans en-AU"},
        {"en ru", "ru", "", "EN RU", "EN RU", "en ru"},
        {"", "", "", "EN", "EN", "en"},
        {"de en", "", "LK_de=false", "EN DE", "EN", "en"},
        {"de en", "", "LK_de=0", "EN DE", "EN", "en"},
        {"de en", "", "LK_de=perhaps", "EN DE", "EN DE", "en de"},
        {"de en", "", "LK_de=", "EN DE", "EN DE", "en de"},
        {"de en", "", "LK_DE=false", "EN DE", "EN DE", "en de"},
        {"en fr zh-Hant", "", "LK_fr=true\nLK_zh-Hant=1", "EN FR ZH-HANT", "EN FR ZH-HANT", "en fr zh-Hant"},
        {"en-GB en de", "", "LK_en=false\nLK_en-GB=false", "EN DE", "EN", "en en-GB"},
    };
    for (const auto& example : examples) {
        SCOPED_TRACE(std::string(example.preferred) + ", " + example.keyboards + ", " + example.stored);
        writeFile(file_, std::string("[General]\n") + example.stored + "\n");
        const auto languages = list(example.preferred, example.keyboards);
        EXPECT_EQ(rowsOf(*languages), words(example.rows));
        EXPECT_EQ(checkedOf(*languages), words(example.checked));
        EXPECT_EQ(languages->getNeededLangsArray(), words(example.needed));
        EXPECT_EQ(told_, std::vector{words(example.needed)});
    }
}

TEST_F(LanguagesList, OffersTheCommonLanguagesAfterThePreferredOnes) {
    const struct {
        const char *preferred, *keyboards, *before, *after, *needed;
    } examples[] = {
        {"de-DE en", "", "EN DE-DE", "", "en de-DE"},
        {"en-US", "", "EN", "", "en en-US"},
        {"en", "ru", "EN", "", "en ru"},
        {"de-CH", "sw", "EN DE-CH", "SW", "en de-CH sw"},
        {"", "", "EN", "", "en"},
    };
    for (const auto& example : examples) {
        const auto languages = list(example.preferred, example.keyboards, true);
        EXPECT_EQ(rowsOf(*languages), words(example.before) + words(commonWithoutEnglish) + words(example.after));
        EXPECT_EQ(languages->getNeededLangsArray(), words(example.needed)) << example.preferred;
    }
    EXPECT_EQ(rowsOf(*list("fr zh-Hans", "", true)).size(), 33);
}

TEST_F(LanguagesList, StoresEachChoiceAtOnceAndTellsIt) {
    {
        const auto languages = list("de ru pt-PT en");
        EXPECT_TRUE(check(*languages, 1, false));
        EXPECT_EQ(UserDefaults(file_).boolean(QStringLiteral("LK_de")), false);
        EXPECT_FALSE(UserDefaults(file_).boolean(QStringLiteral("LK_ru")).has_value());
        languages->setLangNeededState(3, false);
        EXPECT_EQ(UserDefaults(file_).boolean(QStringLiteral("LK_pt-PT")), false);
        EXPECT_EQ(told_, (std::vector{words("en de ru pt-PT"), words("en ru pt-PT"), words("en ru")}));
        EXPECT_EQ(checkedOf(*languages), words("EN RU"));
    }
    const auto again = list("de ru pt-PT en");
    EXPECT_EQ(again->getNeededLangsArray(), words("en ru"));
    EXPECT_TRUE(check(*again, 1, true));
    EXPECT_EQ(list("de ru pt-PT en")->getNeededLangsArray(), words("en de ru"));
}

TEST_F(LanguagesList, KeepsEnglishWhateverIsSet) {
    const auto languages = list("en-GB de");
    EXPECT_FALSE(check(*languages, 0, false));
    languages->setLangNeededState(0, false);
    EXPECT_EQ(checkedOf(*languages), words("EN DE"));
    EXPECT_EQ(languages->getNeededLangsArray(), words("en en-GB de"));
    languages->setLangNeededState(1, false);
    EXPECT_EQ(languages->getNeededLangsArray(), words("en en-GB"));
    EXPECT_EQ(list("en-GB de")->getNeededLangsArray(), words("en en-GB"));
}

TEST_F(LanguagesList, LetsNoRowBeChangedThatIsLocked) {
    const auto languages = list("de ru en");
    const auto editable = [&] {
        QStringList rows;
        for (int row = 0; row < languages->rowCount(); ++row) {
            const auto flags = languages->flags(languages->index(row, LangListController::checkColumn));
            EXPECT_EQ(flags.testFlag(Qt::ItemIsUserCheckable), languages->canEditRowCheck(row));
            if (languages->canEditRowCheck(row)) {
                rows.append(languages->getIconforRow(row));
            }
        }
        return rows;
    };
    EXPECT_EQ(editable(), words("DE RU"));
    languages->updateCleaningState(true);
    EXPECT_EQ(editable(), QStringList());
    EXPECT_FALSE(check(*languages, 1, false));
    EXPECT_EQ(checkedOf(*languages), words("EN DE RU"));
    languages->updateCleaningState(false);
    EXPECT_EQ(editable(), words("DE RU"));
    EXPECT_FALSE(languages->isSingleChecked());
    EXPECT_TRUE(check(*languages, 1, false));
    EXPECT_FALSE(languages->isLatestCheckedItem(2));
    EXPECT_TRUE(check(*languages, 2, false));
    EXPECT_TRUE(languages->isSingleChecked());
    EXPECT_TRUE(languages->isLatestCheckedItem(0));
    EXPECT_FALSE(languages->isLatestCheckedItem(1));
    EXPECT_EQ(editable(), words("DE RU"));
}

TEST_F(LanguagesList, AnswersNothingForRowsThatAreNotThere) {
    const auto languages = list("de en");
    for (const int row : {-1, 2, 1000}) {
        languages->setLangNeededState(row, true);
        languages->setLangNeededState(row, false);
        EXPECT_FALSE(languages->getLangNeededState(row));
        EXPECT_FALSE(languages->canEditRowCheck(row));
        EXPECT_FALSE(languages->isLatestCheckedItem(row));
        EXPECT_EQ(languages->getIconforRow(row), QString());
        EXPECT_EQ(languages->text(row), QStringLiteral("Undefined"));
        EXPECT_FALSE(check(*languages, row, false));
    }
    EXPECT_EQ(told_.size(), 1U);
    const auto text = languages->index(1, LangListController::textColumn);
    EXPECT_FALSE(languages->setData(text, Qt::Unchecked, Qt::CheckStateRole));
    EXPECT_FALSE(languages->setData(text, QStringLiteral("Deutsch"), Qt::EditRole));
    EXPECT_FALSE(languages->data(text, Qt::CheckStateRole).isValid());
}

TEST_F(LanguagesList, ShowsAllChecksAnewWhereExactlyOneIsOrWasChecked) {
    const auto languages = list("en de ru");
    std::vector<std::pair<int, int>> changes;
    QObject::connect(languages.get(), &QAbstractItemModel::dataChanged, languages.get(),
                     [&](const QModelIndex& first, const QModelIndex& last) {
                         EXPECT_EQ(first.column(), LangListController::checkColumn);
                         changes.emplace_back(first.row(), last.row());
                     });
    const std::pair<int, bool> steps[] = {{1, true}, {2, true}, {2, false}, {1, false}};
    for (const auto& [row, checked] : steps) {
        EXPECT_TRUE(check(*languages, row, checked));
    }
    EXPECT_THAT(changes, testing::ElementsAre(std::pair(0, 2), std::pair(2, 2), std::pair(2, 2), std::pair(0, 2)));
    changes.clear();
    languages->updateCleaningState(true);
    EXPECT_THAT(changes, testing::ElementsAre(std::pair(0, 2)));
}

TEST_F(LanguagesList, NamesLanguagesWithACapitalForEachWordAndDescribesThoseWithoutAName) {
    const auto languages = list("de pt-PT zh-Hans ar-001 qqx", "", true);
    const QRegularExpression smallBeginning(QStringLiteral("(^|[ (])\\p{Ll}"));
    const QStringList identifiers = words("en de pt-PT zh-Hans ar-001 qqx");
    for (int row = 0; row < identifiers.size() - 1; ++row) {
        const QString text = languages->text(row);
        EXPECT_FALSE(smallBeginning.match(text).hasMatch()) << text.toStdString();
        EXPECT_EQ(text.toLower(),
                  platform::LocaleIdentifiers::displayName(identifiers[row], {QStringLiteral("de")}).toLower());
        EXPECT_EQ(languages->data(languages->index(row, LangListController::textColumn), Qt::DisplayRole), text);
        EXPECT_EQ(languages->data(languages->index(row, LangListController::checkColumn), Qt::AccessibleTextRole),
                  text);
    }
    EXPECT_EQ(languages->text(5), QStringLiteral("<LangItem: qqx>"));
}

TEST_F(LanguagesList, NamesLanguagesInTheUsersOwnWhateverTheProgramSpeaks) {
    EXPECT_EQ(list("fr-CA fr")->text(0), QStringLiteral("Anglais"));
    EXPECT_EQ(list("ru en fr")->text(0), QStringLiteral("Английский"));
    EXPECT_EQ(list("tr")->text(0), QStringLiteral("İngilizce"));
    EXPECT_EQ(list("ka")->text(0), QStringLiteral("ინგლისური"));
    EXPECT_EQ(list("qqx")->text(0), QStringLiteral("English"));
}

}  // namespace brimvault::tests
