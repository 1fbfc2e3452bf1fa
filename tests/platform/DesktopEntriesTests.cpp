#include "platform/DesktopEntries.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "support/HostileFiles.h"
#include "support/SubstituteHome.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using platform::DesktopEntries;
namespace fs = std::filesystem;

namespace {

class DesktopEntriesTest : public testing::Test {
protected:
    void write(const fs::path& file, const std::string& lines) const {
        writeFile(folder_ / file, "[Desktop Entry]\nType=Application\nName=" + file.stem().string() + "\n" + lines);
    }
    [[nodiscard]] std::string iconOf(const std::string& identifier) {
        const auto entry = entries().find(identifier);
        return entry ? entry->icon : "none";
    }
    [[nodiscard]] std::string foundBy(const std::string& name) {
        const auto entry = entries().findByClassOrProgram(name);
        return entry ? entry->identifier : "none";
    }
    [[nodiscard]] DesktopEntries entries() const { return DesktopEntries({folder_ / "own", folder_ / "shared"}); }

    const TemporaryFolder folder_;
};

TEST_F(DesktopEntriesTest, AreThoseOfTheUserThenOfTheSystemAndOfThePackageSystems) {
    const SubstituteHome home("/home/anna", {{"BRIMVAULT_TRIAL_ROOT", "/trial"}});
    EXPECT_EQ(DesktopEntries::dataFolders(),
              (std::vector<fs::path>{"/home/anna/.local/share", "/home/anna/.local/share/flatpak/exports/share",
                                     "/trial/usr/local/share", "/trial/usr/share",
                                     "/trial/var/lib/flatpak/exports/share", "/trial/var/lib/snapd/desktop"}));
    const SubstituteHome named("/home/anna", {{"XDG_DATA_HOME", "/data"}, {"XDG_DATA_DIRS", "/a/:relative:/b"}});
    EXPECT_EQ(DesktopEntries::dataFolders(),
              (std::vector<fs::path>{"/data", "/data/flatpak/exports/share", "/a/", "/b",
                                     "/var/lib/flatpak/exports/share", "/var/lib/snapd/desktop"}));
}

TEST_F(DesktopEntriesTest, TheUsersOwnEntryReplacesTheSystemsAndMayDeleteIt) {
    write("shared/applications/org.example.Editor.desktop", "Icon=of-all\n");
    write("shared/applications/org.example.Gone.desktop", "Icon=of-all\n");
    write("shared/applications/vendor/viewer.desktop", "Icon=/opt/viewer.png\n");
    EXPECT_EQ(iconOf("org.example.Editor"), "of-all");
    EXPECT_EQ(iconOf("vendor-viewer"), "/opt/viewer.png");
    write("own/applications/org.example.Editor.desktop", "Icon=own.png\n");
    write("own/applications/org.example.Gone.desktop", "Hidden=true\n");
    write("own/applications/out.desktop", "Icon=../../secret\n");
    EXPECT_EQ(iconOf("org.example.Editor"), "own") << "themes know icons without their extension";
    EXPECT_EQ(iconOf("org.example.Gone"), "none");
    EXPECT_EQ(iconOf("out"), "") << "no name of a theme's icon leads out of the theme";
    for (const char* identifier : {"", "../applications/org.example.Editor", "vendor/viewer", "unknown"}) {
        EXPECT_EQ(iconOf(identifier), "none") << identifier;
    }
}

TEST_F(DesktopEntriesTest, TheNameIsInTheUsersLanguageAndOnOneLine) {
    write("own/applications/mail.desktop", "Name[de]=E-Mail\\nzwei\n");
    const char* before = std::getenv("LANGUAGE");
    const std::string kept = before == nullptr ? "" : before;
    ::setenv("LANGUAGE", "de_AT:en", 1);
    EXPECT_EQ(entries().find("mail")->name, QStringLiteral("E-Mail\uFFFDzwei"));
    ::setenv("LANGUAGE", "fr", 1);
    EXPECT_EQ(entries().find("mail")->name, QStringLiteral("mail"));
    ::setenv("LANGUAGE", kept.c_str(), 1);
    write("own/applications/long.desktop", "Name=" + std::string(30'000, 'x') + "\n");
    EXPECT_EQ(entries().find("long")->name.size(), 100);
    write("own/applications/blank.desktop", "Name=\\s\n");
    write("own/applications/noise.desktop", "Name=\xE9\n");
    EXPECT_EQ(iconOf("blank"), "none");
    EXPECT_EQ(iconOf("noise"), "none");
}

TEST_F(DesktopEntriesTest, AnApplicationIsFoundByTheClassOfItsWindowsAndByItsProgram) {
    write("shared/applications/code.desktop", "Exec=/usr/share/code/code %F\nStartupWMClass=Code\n");
    write("shared/applications/code-url-handler.desktop", "Exec=/usr/share/code/code --open-url %U\nNoDisplay=true\n");
    write("shared/applications/org.example.Editor.desktop",
          "Exec=/usr/bin/flatpak run --branch=stable --command=editor org.example.Editor\n");
    write("shared/applications/snap_player.desktop", "Exec=env HINT=/a/b.desktop \"/snap/bin/player\" %U\n");
    write("shared/applications/broken.desktop", "Exec=\"unbalanced\n");
    EXPECT_EQ(foundBy("code"), "code");
    EXPECT_EQ(foundBy("CODE"), "code") << "classes in whatever case";
    EXPECT_EQ(foundBy("editor"), "org.example.Editor");
    EXPECT_EQ(foundBy("player"), "snap_player");
    for (const char* name : {"flatpak", "env", "Player", ""}) {
        EXPECT_EQ(foundBy(name), "none") << name;
    }
}

TEST_F(DesktopEntriesTest, WhatIsNoShortFileIsPassedOver) {
    write("shared/applications/a.desktop", "Icon=of-all\nExec=a\n");
    forEachHostileKind(folder_ / "own/applications/a.desktop", [&](const std::string& kind) {
        EXPECT_EQ(iconOf("a"), "of-all") << kind;
        EXPECT_EQ(foundBy("a"), "a") << kind;
    });
}

}  // namespace

}  // namespace brimvault::tests
