#include "platform/LocaleIdentifiers.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "langres/LanguagesManager.h"
#include "support/ChildProcess.h"
#include "support/TextPrinting.h"

namespace brimvault::tests {

using platform::LocaleIdentifiers;

namespace {

QString canonical(const char* text) {
    return LocaleIdentifiers::canonicalLocaleIdentifierFromString(QString::fromUtf8(text));
}

QStringList words(const char* text) { return QString::fromUtf8(text).split(QLatin1Char(' '), Qt::SkipEmptyParts); }

QString nameOf(const char* identifier, const char* readersLanguages) {
    return LocaleIdentifiers::displayName(QString::fromLatin1(identifier), words(readersLanguages));
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
    };
    for (const char* line : spellings) {
        for (const QString& spelling : QString::fromLatin1(line).split(QStringLiteral(", "))) {
            EXPECT_EQ(LocaleIdentifiers::canonicalLocaleIdentifierFromString(spelling.section(QLatin1Char('='), 0, 0)),
                      spelling.section(QLatin1Char('='), 1))
                << spelling.toStdString();
        }
    }
}

TEST(LocaleIdentifiers, KeepTheScriptThatAModifierStates) {
    EXPECT_EQ(canonical("sr_RS@latin"), QStringLiteral("sr-Latn"));
    EXPECT_EQ(canonical("sr@latin"), QStringLiteral("sr-Latn"));
    EXPECT_EQ(canonical("uz_UZ@cyrillic"), QStringLiteral("uz-Cyrl"));
}

TEST(LocaleIdentifiers, StayAsTheyAreWhereTheyAreNone) {
    for (const char* text : {"", "X", "not a language", "MyFonts", "../..", "de_DE_x", "line\nbreak", "i-klingon", "-",
                             "de--AT", "\xef\xbf\xbd", "123", "Default"}) {
        EXPECT_EQ(canonical(text), QString::fromUtf8(text));
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
    const std::pair<const char*, const char*> examples[] = {
        {"", "en"},
        {"C", "en"},
        {"POSIX", "en"},
        {"C fr_FR", "fr"},
        {"de_AT", "de-AT de"},
        {"en_GB", "en-GB"},
        {"zh_HK", "zh-Hant-HK zh-Hant"},
        {"zh_TW", "zh-Hant"},
        {"es_419", "es-419 es"},
        {"es_MX", "es-MX es-419 es"},
        {"es_ES", "es"},
        {"sr_Latn_RS", "sr-Latn sr"},
        {"de_DE de en_US de_AT en", "de en-US de-AT"},
        {"de_AT.UTF-8 German de-CH", "de-AT de de-CH"},
    };
    for (const auto& [given, preferred] : examples) {
        EXPECT_EQ(LocaleIdentifiers::preferredLanguagesFrom(words(given)), words(preferred)) << given;
    }
}

TEST(LocaleIdentifiers, OfTheDesktopNameNoBareEnglishBetweenThoseThatTheUserNamed) {
    EXPECT_WELL_IN_CHILD([]() -> std::string {
        ::setenv("LANGUAGE", "en_US:fr", 1);
        const auto languages = LocaleIdentifiers::preferredLanguages();
        if (languages.first() != QLatin1String("en-US")) {
            return cannotTry("the languages of this process have been read before");
        }
        return languages == words("en-US fr") ? "" : languages.join(QLatin1Char(' ')).toStdString();
    });
}

TEST(LocaleIdentifiers, HaveNamesInTheReadersLanguage) {
    EXPECT_EQ(nameOf("de", "en"), QStringLiteral("German"));
    EXPECT_EQ(nameOf("de", "de-AT"), QStringLiteral("Deutsch"));
    EXPECT_EQ(nameOf("pt-PT", "de"), QStringLiteral("Portugiesisch (Portugal)"));
    EXPECT_EQ(nameOf("de", "fr en"), QStringLiteral("allemand"));
    EXPECT_EQ(nameOf("de", "qqx xx ja"), QStringLiteral("ドイツ語")) << "of the first that there are names in";
    EXPECT_EQ(nameOf("de", "qqx"), QStringLiteral("German"));
    EXPECT_TRUE(nameOf("zh-Hans", "en").contains(QLatin1String("Simplified")));
    EXPECT_TRUE(nameOf("zh-Hans", "de").contains(QLatin1String("Chinesisch")));
}

TEST(LocaleIdentifiers, HaveNoNameWhereTheyStandForNoLanguage) {
    for (const char* identifier : {"qqx", "xx", "MyFonts", "", "not a language"}) {
        EXPECT_EQ(nameOf(identifier, "en"), QString()) << identifier;
    }
}

}  // namespace brimvault::tests
