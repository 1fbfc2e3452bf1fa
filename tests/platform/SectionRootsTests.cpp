#include "platform/SectionRoots.h"

#include <gtest/gtest.h>

#include "platform/LibraryURLs.h"
#include "support/SubstituteHome.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using platform::openSectionRoot;
using platform::RootRefusal;
namespace fs = std::filesystem;

namespace {

class SectionRoots : public testing::Test {
protected:
    SectionRoots() { fs::create_directories(home_ / "Library"); }

    // The answer for a root folder that is a symbolic link.
    RootRefusal refusalOfLinkTo(const fs::path& target, const fs::path& root = "Downloads") const {
        fs::remove(home_ / root);
        fs::create_directory_symlink(target, home_ / root);
        const auto found = openSectionRoot(home_ / root);
        EXPECT_EQ(found.folder.has_value(), found.place->refusal == RootRefusal::none);
        return found.place->refusal;
    }

    TemporaryFolder folder_;
    const fs::path home_ = folder_ / "home";
    const SubstituteHome system_{home_, {{"BRIMVAULT_TRIAL_ROOT", folder_ / "root"}}};
};

}  // namespace

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

TEST_F(SectionRoots, ThatAreTheUsersFolderWithoutAnyLinkAreRefusedToo) {
    fs::create_directories(home_ / "Documents/inner");
    for (const char* named : {"$HOME/Documents", "$HOME", "$HOME/Documents/.."}) {
        writeFile(home_ / ".config/user-dirs.dirs", std::string("XDG_DOWNLOAD_DIR=\"") + named + "\"\n");
        EXPECT_FALSE(openSectionRoot(platform::LibraryURLs::namedDownloadsFolder()).folder) << named;
    }
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
