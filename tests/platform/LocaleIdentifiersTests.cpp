#include "platform/LocaleIdentifiers.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "langres/LanguagesManager.h"
#include "support/ChildProcess.h"
#include "support/TextPrinting.h"

namespace brimvault::tests {

using platform::LocaleIdentifiers;

namespace {

QStringList words(const QString& text) { return text.split(QLatin1Char(' '), Qt::SkipEmptyParts); }

// Of "given=expected".
std::pair<QString, QString> halves(const QString& example) {
    return {example.section(QLatin1Char('='), 0, 0), example.section(QLatin1Char('='), 1)};
}

}  // namespace

TEST(LocaleIdentifiers, HaveOneFormForEverySpellingOfALanguage) {
    const char* const spellings[] = {
        "English=en, ENGLISH=en, French=fr, Dutch=nl, German=de, Spanish=es, Italian=it, Japanese=ja, Norwegian=nb",
        "Brazilian Portuguese=pt, TraditionalChinese=zh-Hant, Traditional Chinese=zh-Hant, SimplifiedChinese=zh-Hans",
        "EN=en, en_US=en, en_GB=en-GB, en-gb=en-GB, DE_de=de, deu=de, de_DE.UTF-8=de, de_DE@euro=de, es_ES=es",
        "pt_BR=pt, pt_PT=pt-PT, es_419=es-419, sr_Latn=sr-Latn, sr_Cyrl_RS=sr",
        "zh=zh-Hans, zh_CN=zh-Hans, zh-Hans_CN=zh-Hans, zh_TW=zh-Hant, zh-Hant_TW=zh-Hant",
        "zh_HK=zh-Hant-HK, zh-Hant-HK=zh-Hant-HK, zh_SG=zh-Hans-SG",
        "Portuguese (Brazil)=pt, Chinese (Simplified)=zh-Hans, Chinese_Traditional=zh-Hant",
        "iw=he, in=id, ji=yi, no=nb, no_NO=nb, nn=nn",
        "sr_RS@latin=sr-Latn, sr@latin=sr-Latn, uz_UZ@cyrillic=uz-Cyrl",  // the script is kept
    };
    for (const char* line : spellings) {
        for (const QString& example : QString::fromLatin1(line).split(QStringLiteral(", "))) {
            const auto [spelling, canonical] = halves(example);
            EXPECT_EQ(LocaleIdentifiers::canonicalLocaleIdentifierFromString(spelling), canonical)
                << example.toStdString();
        }
    }
}

TEST(LocaleIdentifiers, StayAsTheyAreWhereTheyAreNone) {
    for (const char* text : {"", "X", "not a language", "MyFonts", "../..", "de_DE_x", "line\nbreak", "i-klingon", "-",
                             "de--AT", "\xef\xbf\xbd", "123", "Default"}) {
        const auto same = QString::fromUtf8(text);
        EXPECT_EQ(LocaleIdentifiers::canonicalLocaleIdentifierFromString(same), same);
    }
}

TEST(LocaleIdentifiers, AreInTheirOwnFormAndHaveANameWhereTheProgramOffersThem) {
    const auto offered = langres::LanguagesManager({{}, {}, true}).popularLanguages();
    EXPECT_EQ(offered.size(), 33);
    for (const QString& language : offered) {
        EXPECT_EQ(LocaleIdentifiers::canonicalLocaleIdentifierFromString(language), language);
        EXPECT_NE(LocaleIdentifiers::displayName(language, {}), QString()) << language.toStdString();
    }
}

TEST(LocaleIdentifiers, OfPreferredLanguagesAreEachFollowedByTheirFamilyUnlessTheyAreEnglish) {
    const char* const examples =
        "=en, C=en, POSIX=en, C fr_FR=fr, de_AT=de-AT de, en_GB=en-GB, zh_HK=zh-Hant-HK zh-Hant, zh_TW=zh-Hant, "
        "es_419=es-419 es, es_MX=es-MX es-419 es, es_ES=es, sr_Latn_RS=sr-Latn sr, "
        "de_DE de en_US de_AT en=de en-US de-AT, de_AT.UTF-8 German de-CH=de-AT de de-CH";
    for (const QString& example : QString::fromLatin1(examples).split(QStringLiteral(", "))) {
        const auto [given, preferred] = halves(example);
        EXPECT_EQ(LocaleIdentifiers::preferredLanguagesFrom(words(given)), words(preferred)) << example.toStdString();
    }
}

TEST(LocaleIdentifiers, OfTheDesktopNameNoBareEnglishBetweenThoseThatTheUserNamed) {
    EXPECT_WELL_IN_CHILD([]() -> std::string {
        ::setenv("LANGUAGE", "en_US:fr", 1);
        const auto languages = LocaleIdentifiers::preferredLanguages();
        if (languages.first() != QLatin1String("en-US")) {
            return cannotTry("the languages of this process have been read before");
        }
        return languages == words(QStringLiteral("en-US fr")) ? "" : languages.join(QLatin1Char(' ')).toStdString();
    });
}

TEST(LocaleIdentifiers, HaveNamesInTheReadersLanguageUnlessTheyStandForNone) {
    const std::tuple<const char*, const char*, const char*> examples[] = {
        {"de", "en", "German"},
        {"de", "de-AT", "Deutsch"},
        {"pt-PT", "de", "Portugiesisch (Portugal)"},
        {"de", "fr en", "allemand"},
        {"de", "qqx xx ja", "ドイツ語"},  // of the first that there are names in
        {"de", "qqx", "German"},
        {"qqx", "en", ""},
        {"xx", "en", ""},
        {"MyFonts", "en", ""},
        {"", "en", ""},
        {"not a language", "en", ""},
    };
    for (const auto& [identifier, readersLanguages, name] : examples) {
        EXPECT_EQ(LocaleIdentifiers::displayName(QString::fromLatin1(identifier),
                                                 words(QString::fromLatin1(readersLanguages))),
                  QString::fromUtf8(name))
            << identifier << " for " << readersLanguages;
    }
    const auto simplified = LocaleIdentifiers::displayName(QStringLiteral("zh-Hans"), {QStringLiteral("en")});
    EXPECT_TRUE(simplified.contains(QLatin1String("Simplified")));
}

}  // namespace brimvault::tests
