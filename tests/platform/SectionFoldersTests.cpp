#include <gtest/gtest.h>

#include "platform/LibraryURLs.h"
#include "platform/SectionRoots.h"
#include "support/HostileFiles.h"
#include "support/SubstituteHome.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using platform::LibraryURLs;
using platform::openSectionRoot;
using platform::RootRefusal;
namespace fs = std::filesystem;

namespace {

class LibraryURLsTest : public testing::Test {
protected:
    LibraryURLsTest() { fs::create_directories(home_); }

    [[nodiscard]] std::optional<fs::path> cachesWith(const std::string& variable) const {
        const SubstituteHome home(home_, {{"XDG_CACHE_HOME", variable}});
        return LibraryURLs::getCachesFolderURL();
    }
    [[nodiscard]] std::optional<fs::path> downloadsWith(const std::string& lines) const {
        writeFile(home_ / ".config/user-dirs.dirs", lines);
        const SubstituteHome home(home_);
        return LibraryURLs::getDownloadsFolderURL();
    }

    TemporaryFolder folder_;
    const fs::path home_ = folder_ / "home";
};

class SectionRoots : public LibraryURLsTest {
protected:
    SectionRoots() { fs::create_directory(home_ / "Library"); }

    // The answer for a root folder that is a symbolic link.
    RootRefusal refusalOfLinkTo(const fs::path& target, const fs::path& root = "Downloads") const {
        fs::remove(home_ / root);
        fs::create_directory_symlink(target, home_ / root);
        const auto found = openSectionRoot(home_ / root);
        EXPECT_EQ(found.folder.has_value(), found.place->refusal == RootRefusal::none);
        return found.place->refusal;
    }

    const SubstituteHome system_{home_, {{"BRIMVAULT_TRIAL_ROOT", folder_ / "root"}}};
};

}  // namespace

TEST_F(LibraryURLsTest, CachesAreTheLibrarysOrElseWhereTheVariableSays) {
    EXPECT_EQ(cachesWith(""), home_ / "Library/Caches");
    fs::create_directory(home_ / ".cache");
    fs::create_directory(folder_ / "shared");
    EXPECT_EQ(cachesWith(""), home_ / ".cache");
    EXPECT_EQ(cachesWith("relative"), home_ / ".cache");
    EXPECT_EQ(cachesWith(folder_ / "shared"), folder_ / "shared");
    EXPECT_EQ(cachesWith((folder_ / "shared").native() + "/"), folder_ / "shared");
    EXPECT_EQ(cachesWith(folder_ / "missing"), home_ / "Library/Caches");
    fs::create_directories(home_ / "Library/Caches");
    EXPECT_EQ(cachesWith(folder_ / "shared"), home_ / "Library/Caches");
}

TEST_F(LibraryURLsTest, CachesAreNeverTheHomeFolderNorOneThatHoldsIt) {
    fs::create_directory(home_ / "x");
    fs::create_directory_symlink(folder_.path(), folder_ / "again");
    for (const auto& variable : {home_.native(), home_.native() + "/", home_.native() + "/.", folder_.path().native(),
                                 std::string("/"), (folder_ / "again/home").native(), home_.native() + "/x/.."}) {
        EXPECT_EQ(cachesWith(variable), std::nullopt) << variable;
    }
}

TEST_F(LibraryURLsTest, LinksOnTheWayAndAtItsEndAreResolved) {
    fs::create_directories(folder_ / "disk/Caches");
    fs::create_directory_symlink(folder_ / "disk", home_ / "Library");
    EXPECT_EQ(cachesWith(""), folder_ / "disk/Caches");
    fs::remove(folder_ / "disk/Caches");
    EXPECT_EQ(cachesWith(""), folder_ / "disk/Caches") << "also where its end is missing";
    fs::create_directory(folder_ / "disk/elsewhere");
    fs::create_directory_symlink("elsewhere", folder_ / "disk/Caches");
    EXPECT_EQ(cachesWith(""), folder_ / "disk/elsewhere");
    fs::remove(folder_ / "disk/Caches");
    fs::create_directory_symlink(folder_ / "home", folder_ / "disk/Caches");
    EXPECT_EQ(cachesWith(""), std::nullopt);
}

TEST_F(LibraryURLsTest, DownloadsAreWhereTheUsersDirectoriesSay) {
    const auto line = [](const std::string& value) { return "XDG_DOWNLOAD_DIR=\"" + value + "\"\n"; };
    std::vector<std::pair<std::string, std::optional<fs::path>>> examples = {
        {line("$HOME/Loads"), home_ / "Loads"},
        {"  \t" + line("$HOME/Loads/"), home_ / "Loads"},
        {line("/elsewhere/loads"), "/elsewhere/loads"},
        {"# a comment\n" + line("$HOME/first") + line("$HOME/second"), home_ / "second"},
        {line(R"($HOME/a\"b\\c\$d\`e)"), home_ / R"(a"b\c$d`e)"},
        {"XDG_DOWNLOAD_DIR=\"$HOME/no newline", home_ / "no newline"},
        {"XDG_DOWNLOAD_DIR=\"$HOME/Loads\"\r\n", home_ / "Loads"},
        {line("$HOME/T\xc3\xa9l \xff"), home_ / "T\xc3\xa9l \xff"},
    };
    for (const std::string& nothing : {std::string(), "# " + line("/commented"), line("relative"), line(""),
                                       std::string("XDG_MUSIC_DIR=\"$HOME/Music\"\n"),
                                       std::string("XDG_DOWNLOAD_DIR=/unquoted\n"), line("$HOMEwork/x")}) {
        examples.emplace_back(nothing, home_ / "Downloads");
    }
    for (const char* off : {"$HOME/", "$HOME", "$HOME/.", "$HOME/x/..", "$HOME/..", "/"}) {
        examples.emplace_back(line(off), std::nullopt);
    }
    for (const auto& [lines, expected] : examples) {
        EXPECT_EQ(downloadsWith(lines), expected) << lines;
    }
}

TEST_F(LibraryURLsTest, DownloadsAreTheHomeFoldersWhereTheUsersDirectoriesAreNoPlainFile) {
    const SubstituteHome home(home_);
    const auto file = home_ / ".config/user-dirs.dirs";
    forEachHostileKind(file, [&](const std::string& kind) {
        EXPECT_EQ(LibraryURLs::getDownloadsFolderURL(), home_ / "Downloads") << kind;
    });
    writeFile(home_ / "elsewhere", "XDG_DOWNLOAD_DIR=\"$HOME/Loads\"\n");
    fs::create_symlink(home_ / "elsewhere", file);  // as users move it to another disk
    EXPECT_EQ(LibraryURLs::getDownloadsFolderURL(), home_ / "Loads");
}

TEST_F(LibraryURLsTest, TheHomeFolderIsTheRecordedOneResolvedWhateverTheEnvironmentSays) {
    fs::create_directory_symlink("home", folder_ / "link");
    const SubstituteHome linked(folder_ / "link", {{"HOME", "/elsewhere"}});
    EXPECT_EQ(platform::homeFolder(), home_);
    EXPECT_EQ(LibraryURLs::getCachesFolderURL(), home_ / "Library/Caches");
    EXPECT_EQ(LibraryURLs::getDownloadsFolderURL(), home_ / "Downloads");
    EXPECT_EQ(LibraryURLs::getTrashFolderURL(), home_ / ".Trash");
    EXPECT_EQ(LibraryURLs::getApplicationFolderURL(), "/Applications");
    const platform::SubstituteSystem unrecorded(
        {[] { return std::nullopt; }, [] { return "anna"; }, [](const char*) { return std::string(); }});
    EXPECT_EQ(LibraryURLs::getCachesFolderURL(), "/Users/anna/Library/Caches");
}

TEST_F(SectionRoots, AreFollowedThroughLinksAndHeld) {
    writeFile(folder_ / "disk/deep/downloads/file", "12345");
    fs::create_directory_symlink("deep", folder_ / "disk/link");
    EXPECT_EQ(refusalOfLinkTo("../disk/link/downloads"), RootRefusal::none);
    const auto root = openSectionRoot(home_ / "Downloads");
    EXPECT_EQ(root.place->resolved, folder_ / "disk/deep/downloads");
    EXPECT_TRUE(platform::leadsWhereItDid(*root.place));
    fs::rename(folder_ / "disk/deep", folder_ / "disk/moved");
    std::string listed;
    (void)root.folder->forEachEntry([&](const files::DirectoryEntry& entry) {
        listed += entry.name;
        return true;
    });
    EXPECT_EQ(listed, "file");
    EXPECT_FALSE(platform::leadsWhereItDid(*root.place));
    fs::remove(home_ / "Downloads");
    EXPECT_TRUE(platform::leadsWhereItDid(*root.place)) << "what is gone leads nowhere else";
}

TEST_F(SectionRoots, ThatAreOrHoldWhatIsTheUsersOrAnotherSectionsAreRefused) {
    for (const char* name : {"home/Documents/letters", "home/Bilder", "home/Library/Caches", "home/Library/Logs",
                             "home/Library/Containers", "root/Applications", "home/.local/share/Trash/files",
                             "home/.Trash", "home/Work/Music", "disk"}) {
        fs::create_directories(folder_ / name);
    }
    writeFile(home_ / ".config/user-dirs.dirs",
              "XDG_PICTURES_DIR=\"$HOME/Bilder\"\nXDG_MUSIC_DIR=\"$HOME/Work/Music\"\nXDG_DESKTOP_DIR=\"$HOME/\"\n");
    fs::create_directory_symlink(folder_ / "disk", home_ / "Videos");
    const std::pair<RootRefusal, std::vector<fs::path>> expected[] = {
        {RootRefusal::homeFolder, {".", "..", "/"}},
        {RootRefusal::userFolder, {"Documents", "Bilder", "Work", folder_ / "disk"}},
        {RootRefusal::otherRootFolder,
         {"Library/Caches", "Library/Containers", "Library", folder_ / "root/Applications", ".local/share", ".Trash"}},
        {RootRefusal::none, {"Documents/letters"}},
        {RootRefusal::leadsNowhere, {"missing", "Downloads"}},
        {RootRefusal::noFolder, {".config/user-dirs.dirs"}},
    };
    for (const auto& [refusal, targets] : expected) {
        for (const auto& target : targets) {
            EXPECT_EQ(refusalOfLinkTo(target), refusal) << target;
        }
    }
    EXPECT_EQ(refusalOfLinkTo(home_ / "Library/Caches"), RootRefusal::otherRootFolder);
    EXPECT_EQ(openSectionRoot(home_ / "Library/Caches").place->refusal, RootRefusal::otherRootFolder)
        << "it holds what was downloaded";
    fs::remove(home_ / "Downloads");
    EXPECT_EQ(openSectionRoot(home_ / "Downloads").place->refusal, RootRefusal::missing);
    EXPECT_EQ(openSectionRoot(home_ / "Library/Caches").place->refusal, RootRefusal::none);
}

TEST_F(SectionRoots, OfOneSectionMayBeOneFolder) {
    fs::create_directories(folder_ / "root/Library/Logs");
    EXPECT_EQ(refusalOfLinkTo(folder_ / "root/Library/Logs", "Library/Logs"), RootRefusal::none);
    EXPECT_EQ(refusalOfLinkTo(folder_ / "root/Library", "Library/Logs"), RootRefusal::otherRootFolder);
    fs::create_directories(home_ / ".local/share/Trash/files");
    EXPECT_EQ(refusalOfLinkTo(".local/share/Trash/files", ".Trash"), RootRefusal::none);
    EXPECT_EQ(openSectionRoot(home_ / ".local/share/Trash").place->refusal, RootRefusal::none);
}

}  // namespace brimvault::tests
