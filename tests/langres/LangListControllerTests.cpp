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

    // The rows by the names of their flags, the checked ones with a plus sign.
    static QStringList rowsOf(const LangListController& list) {
        QStringList rows;
        for (int row = 0; row < list.rowCount(); ++row) {
            const auto state = list.data(list.index(row, LangListController::checkColumn), Qt::CheckStateRole);
            EXPECT_EQ(state.toInt() == Qt::Checked, list.getLangNeededState(row));
            rows.append(list.getIconforRow(row) + (list.getLangNeededState(row) ? QStringLiteral("+") : QString()));
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

// Between German and Vietnamese.
const QLatin1String commonInTheMiddle(
    "ZH-HANS ZH-HANT JA ES IT NL KO PT PT-PT DA FI NB SV RU PL TR AR TH CS HU CA HR EL HE RO SK UK ID MS");

}  // namespace

TEST_F(LanguagesList, OffersWhatTheUserUsesAndTheCommonOnesAndChecksWhatIsUsedEvidently) {
    const struct {
        const char *preferred, *keyboards, *stored, *rows, *needed;
    } examples[] = {
        {"de-DE en", "", "", "EN+ DE-DE+", "en de-DE"},
        {"en-US", "", "", "EN+", "en en-US"},
        {"en-US fr", "", "", "EN+ FR+", "en en-US fr"},
        {"en fr", "", "", "EN+ FR", "en"},
        {"fr en it en-GB", "", "", "EN+ FR+ IT", "en fr en-GB"},
        {"it fr de", "", "", "EN+ IT+ FR+ DE+", "en it fr de"},
        {"en", "ru zh-Hans en-AU", "", "EN+ RU+ ZH-HANS+", "en ru zh-Hans en-AU"},
        {"en ru", "ru", "", "EN+ RU+", "en ru"},
        {"", "", "", "EN+", "en"},
        {"de en", "", "LK_de=false", "EN+ DE", "en"},
        {"de en", "", "LK_de=perhaps", "EN+ DE+", "en de"},
        {"de en", "", "LK_DE=false", "EN+ DE+", "en de"},
        {"en fr zh-Hant", "", "LK_fr=true\nLK_zh-Hant=1", "EN+ FR+ ZH-HANT+", "en fr zh-Hant"},
        {"en-GB en de", "", "LK_en=false\nLK_en-GB=false", "EN+ DE", "en en-GB"},
        {"de-DE en-US", "", "", "EN+ DE-DE+ FR DE COMMON VI", "en de-DE en-US"},
        {"de-CH", "sw", "", "EN+ DE-CH+ FR DE COMMON VI SW+", "en de-CH sw"},
        {"vi de fr", "vi", "", "EN+ VI+ DE+ FR+ COMMON", "en vi de fr"},
        {"en", "vi", "", "EN+ FR DE COMMON VI+", "en vi"},
    };
    for (const auto& example : examples) {
        SCOPED_TRACE(std::string(example.preferred) + ", " + example.keyboards + ", " + example.stored);
        writeFile(file_, std::string("[General]\n") + example.stored + "\n");
        QString rows = QString::fromLatin1(example.rows);
        const bool offersCommonLanguages = rows.contains(QLatin1String("COMMON"));
        rows.replace(QLatin1String("COMMON"), commonInTheMiddle);
        const auto languages = list(example.preferred, example.keyboards, offersCommonLanguages);
        EXPECT_EQ(rowsOf(*languages), rows.split(QLatin1Char(' ')));
        EXPECT_EQ(languages->getNeededLangsArray(), words(example.needed));
        EXPECT_EQ(told_, std::vector{words(example.needed)});
    }
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
        EXPECT_EQ(rowsOf(*languages), words("EN+ DE RU+ PT-PT"));
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
    EXPECT_EQ(rowsOf(*languages), words("EN+ DE+"));
    EXPECT_EQ(languages->getNeededLangsArray(), words("en en-GB de"));
    languages->setLangNeededState(1, false);
    EXPECT_EQ(languages->getNeededLangsArray(), words("en en-GB"));
    EXPECT_EQ(list("en-GB de")->getNeededLangsArray(), words("en en-GB"));
}

TEST_F(LanguagesList, LetsNoRowBeChangedDuringACleanNorOneThatIsNotThere) {
    const auto languages = list("de ru en");
    const auto isEditable = [&](int row) {
        const auto flags = languages->flags(languages->index(row, LangListController::checkColumn));
        EXPECT_EQ(flags.testFlag(Qt::ItemIsUserCheckable), languages->canEditRowCheck(row));
        return flags.testFlag(Qt::ItemIsUserCheckable);
    };
    EXPECT_TRUE(!isEditable(0) && isEditable(1) && isEditable(2));
    languages->updateCleaningState(true);
    EXPECT_FALSE(isEditable(0) || isEditable(1) || isEditable(2) || check(*languages, 1, false));
    languages->updateCleaningState(false);
    EXPECT_TRUE(!isEditable(0) && isEditable(1) && isEditable(2));
    for (const int row : {-1, 3}) {
        languages->setLangNeededState(row, true);
        EXPECT_FALSE(languages->getLangNeededState(row) || languages->canEditRowCheck(row));
        EXPECT_EQ(languages->getIconforRow(row), QString());
        EXPECT_EQ(languages->text(row), QStringLiteral("Undefined"));
    }
    EXPECT_EQ(told_.size(), 1U);
    const auto text = languages->index(1, LangListController::textColumn);
    EXPECT_FALSE(languages->setData(text, Qt::Unchecked, Qt::CheckStateRole));
    EXPECT_FALSE(
        languages->setData(text.siblingAtColumn(LangListController::checkColumn), Qt::Unchecked, Qt::EditRole));
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
        EXPECT_EQ(languages->isLatestCheckedItem(0), languages->isSingleChecked());
        EXPECT_EQ(languages->isSingleChecked(), languages->getNeededLangsArray().size() == 1);
        EXPECT_TRUE(check(*languages, row, checked));
        EXPECT_FALSE(languages->isLatestCheckedItem(row));
    }
    languages->updateCleaningState(true);
    using testing::Pair;
    EXPECT_THAT(changes, testing::ElementsAre(Pair(0, 2), Pair(2, 2), Pair(2, 2), Pair(0, 2), Pair(0, 2)));
}

TEST_F(LanguagesList, NamesLanguagesWithACapitalForEachWordAndDescribesThoseWithoutAName) {
    const auto languages = list("de pt-PT zh-Hans ar-001 qqx", "", true);
    const QRegularExpression smallBeginning(QStringLiteral("(^|[ (])\\p{Ll}"));
    const QStringList identifiers = words("en de pt-PT zh-Hans ar-001");
    for (int row = 0; row < identifiers.size(); ++row) {
        const QString text = languages->text(row);
        EXPECT_FALSE(smallBeginning.match(text).hasMatch()) << text.toStdString();
        EXPECT_EQ(text.toLower(),
                  platform::LocaleIdentifiers::displayName(identifiers[row], {QStringLiteral("de")}).toLower());
        EXPECT_EQ(languages->data(languages->index(row, LangListController::textColumn), Qt::DisplayRole), text);
        EXPECT_EQ(languages->data(languages->index(row, LangListController::checkColumn), Qt::AccessibleTextRole),
                  text);
    }
    EXPECT_EQ(languages->text(5), QStringLiteral("<LangItem: qqx>"));
    QStringList headers;
    for (int column = 0; column < LangListController::columns; ++column) {
        headers.append(languages->headerData(column, Qt::Horizontal, Qt::AccessibleTextRole).toString());
    }
    EXPECT_EQ(headers, words("Kept Flag Language"));
}

TEST_F(LanguagesList, NamesLanguagesInTheUsersOwnWhateverTheProgramSpeaks) {
    EXPECT_EQ(list("fr-CA fr")->text(0), QStringLiteral("Anglais"));
    EXPECT_EQ(list("ru en fr")->text(0), QStringLiteral("Английский"));
    EXPECT_EQ(list("tr")->text(0), QStringLiteral("İngilizce"));
    EXPECT_EQ(list("ka")->text(0), QStringLiteral("ინგლისური"));
    EXPECT_EQ(list("qqx")->text(0), QStringLiteral("English"));
}

}  // namespace brimvault::tests
