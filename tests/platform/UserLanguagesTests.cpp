#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/InputSources.h"
#include "platform/LocaleIdentifiers.h"
#include "platform/linux/KeyboardSettings.h"
#include "support/ChildProcess.h"
#include "support/HostileFiles.h"
#include "support/SubstituteHome.h"
#include "support/TextPrinting.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using platform::LocaleIdentifiers;
namespace fs = std::filesystem;

namespace {

/// The contents of a settings file, and the layouts expected from it, as "us ch(fr)".
using Examples = std::initializer_list<std::pair<std::string, const char*>>;

class InputSources : public testing::Test {
protected:
    InputSources() { fs::create_directories(home_); }

    [[nodiscard]] SubstituteHome homeOn(const char* desktop) const {
        return SubstituteHome(home_, {{"BRIMVAULT_TRIAL_ROOT", folder_ / "root"}, {"XDG_CURRENT_DESKTOP", desktop}});
    }
    [[nodiscard]] std::string layoutsOn(const char* desktop) const {
        const auto home = homeOn(desktop);
        std::string names;
        for (const auto& layout : platform::enabledInputSettings().layouts) {
            names +=
                (names.empty() ? "" : " ") + layout.name + (layout.variant.empty() ? "" : "(" + layout.variant + ")");
        }
        return names;
    }
    [[nodiscard]] QStringList languagesOf(const std::string& names, const std::string& variants = {}) const {
        writeFile(machine_, "XKBLAYOUT=\"" + names + "\"\nXKBVARIANT=\"" + variants + "\"\n");
        const auto home = homeOn("");
        return platform::currentInputSources();
    }
    void expectOn(const char* desktop, const fs::path& file, Examples examples) const {
        for (const auto& [text, expected] : examples) {
            writeFile(file, text);
            EXPECT_EQ(layoutsOn(desktop), expected) << text;
        }
    }

    // The languages of these sources in GNOME's settings; empty if they are as expected. In a child process: GLib
    // caches where the settings are for the life of a process.
    [[nodiscard]] std::string otherThan(const std::string& expected, const std::string& sources) const {
        if (!fs::exists("/usr/share/glib-2.0/schemas/org.gnome.desktop.input-sources.gschema.xml")) {
            return cannotTry("the schema of the settings is not installed");
        }
        ::setenv("GSETTINGS_BACKEND", "keyfile", 1);
        ::setenv("XDG_CONFIG_HOME", folder_.path().c_str(), 1);
        writeFile(folder_ / "glib-2.0/settings/keyfile",
                  "[org/gnome/desktop/input-sources]\nsources=" + sources + "\n");
        const auto home = homeOn("ubuntu:GNOME");
        const auto found = platform::currentInputSources().join(QLatin1Char(' ')).toStdString();
        return found == expected ? "" : sources + " gave " + found;
    }

    TemporaryFolder folder_;
    const fs::path component_ = folder_ / "root/usr/share/ibus/component/some.xml";
    const fs::path home_ = folder_ / "home";
    const fs::path machine_ = folder_ / "root/etc/default/keyboard";
    const fs::path xfce_ = home_ / ".config/xfce4/xfconf/xfce-perchannel-xml/keyboard-layout.xml";
};

std::string inXfce(const std::string& disabled) {
    return "<channel name=\"keyboard-layout\"><property name=\"Default\" type=\"empty\">"
           "<property name=\"XkbDisable\" value=\"" +
           disabled +
           "\"/><property name=\"XkbLayout\" value=\"us,ch\"/><property name=\"XkbVariant\" value=\",fr\"/>"
           "</property></channel>\n";
}

QStringList words(const QString& text) { return text.split(QLatin1Char(' '), Qt::SkipEmptyParts); }

// Of "given=expected".
std::pair<QString, QString> halves(const QString& example) {
    return {example.section(QLatin1Char('='), 0, 0), example.section(QLatin1Char('='), 1)};
}

}  // namespace

TEST_F(InputSources, OfTheMachineStandInItsDefaultsOrElseInThoseOfTheDisplay) {
    EXPECT_EQ(layoutsOn(""), "");
    writeFile(folder_ / "root/etc/X11/xorg.conf.d/00-keyboard.conf",
              "Section \"InputClass\"\n  Identifier \"system-keyboard\"\n# Option \"XkbLayout\" \"us\"\n"
              "  Option \"XkbLayout\" \"de,ch\"\n\toption  \"xkbvariant\"  \",fr\"\nEndSection\n");
    EXPECT_EQ(layoutsOn(""), "de ch(fr)");
    expectOn("", machine_,
             {{"XKBMODEL=\"pc105\"\nXKBLAYOUT=\"us,de\"\nXKBVARIANT=\",nodeadkeys\"\n", "us de(nodeadkeys)"},
              {"XKBLAYOUT=ru\n", "ru"},
              {"XKBLAYOUT='ch'\nXKBVARIANT='de_mac'", "ch(de_mac)"},
              {"  XKBLAYOUT=\"us, ru ,\"\nXKBVARIANT=\"dvorak\"\n", "us(dvorak) ru"},
              {"#XKBLAYOUT=\"fr\"\nXKBLAYOUT=ru # the layout\n", "ru"},
              {"XKBVARIANT=\"fr\"\nNOXKBLAYOUT=\"ch\"\n", "de ch(fr)"},
              {"XKBLAYOUT=\",,\"\n", "de ch(fr)"},
              {"", "de ch(fr)"}});
}

TEST_F(InputSources, OfADesktopStandInItsFileOrElseInTheMachines) {
    writeFile(machine_, "XKBLAYOUT=xx\n");
    expectOn("KDE", home_ / ".config/kxkbrc",
             {{"[Layout]\nLayoutList=us,de\nUse=true\nVariantList=,nodeadkeys\n", "us de(nodeadkeys)"},
              {"[Layout]\nLayoutList=ru\n", "ru"},
              {"[Layout]\nLayoutList=ru\nUse=false\n", "xx"},
              {"[Other]\nLayoutList=ru\n", "xx"},
              {"\xff\xfe\x01[[[", "xx"},
              {"", "xx"}});
    expectOn("XFCE", xfce_,
             {{"<channel><property name=", "xx"},
              {"no settings", "xx"},
              {"", "xx"},
              {inXfce("true"), "xx"},
              {inXfce("false"), "us ch(fr)"}});
    EXPECT_EQ(layoutsOn("another"), "xx");
    EXPECT_EQ(layoutsOn("another:XFCE"), "us ch(fr)");
}

TEST_F(InputSources, AreTheMachinesWhereAFileOfTheDesktopIsNoPlainFile) {
    writeFile(machine_, "XKBLAYOUT=xx\n");
    for (const auto& place : {std::pair("KDE", home_ / ".config/kxkbrc"), std::pair("XFCE", xfce_)}) {
        forEachHostileKind(place.second, [&](const std::string& kind) {
            EXPECT_EQ(layoutsOn(place.first), "xx") << place.second << kind;
        });
    }
    forEachHostileKind(machine_, [&](const std::string& kind) { EXPECT_EQ(layoutsOn(""), "") << kind; });
}

// The libraries that read these files take their places from the environment of the process.
TEST_F(InputSources, AreTheMachinesWhereALibraryWouldReadNoPlainFile) {
    writeFile(machine_, "XKBLAYOUT=ru\n");
    for (const char* file : {".config/xkb/rules/evdev.xml", ".xkb/rules/evdev.xml", ".config/dconf/user",
                             ".config/glib-2.0/settings/keyfile"}) {
        EXPECT_WELL_IN_CHILD([&]() -> std::string {
            ::setenv("GSETTINGS_BACKEND", fs::path(file).filename() == "user" ? "dconf" : "keyfile", 1);
            ::setenv("HOME", home_.c_str(), 1);
            ::unsetenv("XDG_CONFIG_HOME");
            std::string wrong;
            forEachHostileKind(home_ / file, [&](const std::string& kind) {
                const SubstituteHome home(
                    home_,
                    {{"BRIMVAULT_TRIAL_ROOT", folder_ / "root"}, {"HOME", home_}, {"XDG_CURRENT_DESKTOP", "GNOME"}});
                wrong += platform::currentInputSources() == QStringList(QStringLiteral("ru")) ? "" : kind + " ";
            });
            return wrong;
        });
    }
}

TEST_F(InputSources, OfGnomeStandInItsSettings) {
    writeFile(machine_, "XKBLAYOUT=ru\n");
    writeFile(component_,
              "<component><name>org.some</name><engines>"
              "<engine><name>mozc-jp</name><language>ja</language></engine>"
              "<engine><language>zh_TW</language><name>chewing</name></engine>"
              "<engine><name>plain</name></engine></engines></component>");
    writeFile(component_.parent_path() / "damaged.xml", "<engine><name>hangul</name><language>ko");
    const std::pair<const char*, const char*> examples[] = {
        {"[('xkb', 'us'), ('ibus', 'mozc-jp'), ('xkb', 'ch+fr')]", "en fr ja"},
        {"[('ibus', 'chewing'), ('ibus', 'hangul'), ('ibus', 'nosuch')]", "ru zh-Hant"},
        {"[('ibus', 'mozc-jp'), ('ibus', 'plain')]", "ru ja"},
        {"[('other', 'us'), ('xkb', '')]", "ru"},
        {"@a(ss) []", "ru"},
        {"'no list'", "ru"},
    };
    for (const auto& example : examples) {
        EXPECT_WELL_IN_CHILD([&] { return otherThan(example.second, example.first); });
    }
}

TEST_F(InputSources, SpeakTheLanguageOfTheirCountryOrElseTheirFirst) {
    for (const char* layout :
         {"us=en", "us dvorak=en", "gb=en", "de=de", "de ru=ru", "ru=ru", "br=pt", "pt=pt-PT", "cn=zh-Hans",
          "tw=zh-Hant", "ch=de", "ch fr=fr", "be=nl", "il=he", "no=nb", "ua=uk", "epo=eo"}) {
        const auto [names, language] = halves(QString::fromLatin1(layout));
        EXPECT_EQ(languagesOf(names.section(u' ', 0, 0).toStdString(), names.section(u' ', 1).toStdString()),
                  QStringList{language})
            << layout;
    }
}

TEST_F(InputSources, CountEachLanguageOnceAndPassOverLayoutsThatThereAreNot) {
    EXPECT_EQ(languagesOf("nosuch,ru,,\xff,ch,us,de,gb,de", ",,,,fr,,,,nosuch"),
              (QStringList{QStringLiteral("ru"), QStringLiteral("fr"), QStringLiteral("en"), QStringLiteral("de")}));
    EXPECT_EQ(languagesOf("nosuch"), QStringList());
    EXPECT_EQ(languagesOf(""), QStringList());
}

TEST(LocaleIdentifiers, HaveOneFormForEverySpellingOfALanguage) {
    const char* const spellings =
        "English=en, ENGLISH=en, French=fr, Dutch=nl, German=de, Spanish=es, Italian=it, Japanese=ja, Norwegian=nb, "
        "Brazilian Portuguese=pt, TraditionalChinese=zh-Hant, Traditional Chinese=zh-Hant, SimplifiedChinese=zh-Hans, "
        "EN=en, en_US=en, en_GB=en-GB, en-gb=en-GB, DE_de=de, deu=de, de_DE.UTF-8=de, de_DE@euro=de, es_ES=es, "
        "pt_BR=pt, pt_PT=pt-PT, es_419=es-419, sr_Latn=sr-Latn, sr_Cyrl_RS=sr, "
        "zh=zh-Hans, zh_CN=zh-Hans, zh-Hans_CN=zh-Hans, zh_TW=zh-Hant, zh-Hant_TW=zh-Hant, "
        "zh_HK=zh-Hant-HK, zh-Hant-HK=zh-Hant-HK, zh_SG=zh-Hans-SG, "
        "Portuguese (Brazil)=pt, Chinese (Simplified)=zh-Hans, Chinese_Traditional=zh-Hant, "
        "iw=he, in=id, ji=yi, no=nb, no_NO=nb, nn=nn, "
        "sr_RS@latin=sr-Latn, sr@latin=sr-Latn, uz_UZ@cyrillic=uz-Cyrl";  // the script is kept
    for (const QString& example : QString::fromLatin1(spellings).split(QStringLiteral(", "))) {
        const auto [spelling, canonical] = halves(example);
        EXPECT_EQ(LocaleIdentifiers::canonicalLocaleIdentifierFromString(spelling), canonical) << example.toStdString();
    }
}

TEST(LocaleIdentifiers, StayAsTheyAreWhereTheyAreNone) {
    for (const char* text : {"", "X", "not a language", "MyFonts", "../..", "de_DE_x", "line\nbreak", "i-klingon", "-",
                             "de--AT", "\xef\xbf\xbd", "123", "Default"}) {
        const auto same = QString::fromUtf8(text);
        EXPECT_EQ(LocaleIdentifiers::canonicalLocaleIdentifierFromString(same), same);
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
