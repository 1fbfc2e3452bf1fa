#include "platform/InputSources.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/linux/KeyboardSettings.h"
#include "support/ChildProcess.h"
#include "support/HostileFiles.h"
#include "support/SubstituteHome.h"
#include "support/TextPrinting.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

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
        const auto settings = folder_ / "settings";
        ::setenv("GSETTINGS_BACKEND", "keyfile", 1);
        ::setenv("XDG_CONFIG_HOME", settings.c_str(), 1);
        writeFile(settings / "glib-2.0/settings/keyfile",
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
            const bool isDatabase = std::string(file).find("dconf") != std::string::npos;
            ::setenv("GSETTINGS_BACKEND", isDatabase ? "dconf" : "keyfile", 1);
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
        const auto parts = QString::fromLatin1(layout).split(QLatin1Char('='));
        const auto names = parts[0].split(QLatin1Char(' '));
        EXPECT_EQ(languagesOf(names[0].toStdString(), names.value(1).toStdString()), QStringList{parts[1]}) << layout;
    }
}

TEST_F(InputSources, CountEachLanguageOnceAndPassOverLayoutsThatThereAreNot) {
    EXPECT_EQ(languagesOf("nosuch,ru,,\xff,ch,us,de,gb,de", ",,,,fr,,,,nosuch"),
              (QStringList{QStringLiteral("ru"), QStringLiteral("fr"), QStringLiteral("en"), QStringLiteral("de")}));
    EXPECT_EQ(languagesOf("nosuch"), QStringList());
    EXPECT_EQ(languagesOf(""), QStringList());
}

}  // namespace brimvault::tests
