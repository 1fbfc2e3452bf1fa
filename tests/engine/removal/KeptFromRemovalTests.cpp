// What is removed in no way, whoever asks: neither as an item nor by a path that leads to it.

#include <gtest/gtest.h>

#include "engine/removal/ItemRemoval.h"
#include "files/NodeStatus.h"
#include "support/SubstituteHome.h"
#include "support/TextPrinting.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace engine;
using namespace trial;
namespace fs = std::filesystem;

namespace {

class KeptFromRemoval : public testing::Test {
protected:
    KeptFromRemoval() {
        fs::create_directories(caches_);
        writeFile(home_ / "Documents/letter", "precious");
    }

    TemporaryFolder folder_;
    const fs::path home_ = folder_ / "home";
    const fs::path caches_ = home_ / "Library/Caches";
    const fs::path trash_ = home_ / ".local/share/Trash/files";
    const SubstituteHome system_{home_, {{"BRIMVAULT_TRIAL_ROOT", folder_ / "root"}}};
};

}  // namespace

TEST_F(KeptFromRemoval, IsWhatLiesOutsideOfATrial) {
    const auto outside = folder_ / "outside";
    const auto outsideText = QStringLiteral("It lies outside of the trial");
    for (const auto& file : {outside / "file", outside / "folder/file", outside / "shared/file",
                             folder_ / "home 2/file", folder_ / "root/volume/file"}) {
        writeFile(file, "precious");
    }
    fs::create_directory_symlink(outside, home_ / "Downloads");
    fs::create_directory_symlink(outside, home_ / "link");
    fs::create_directory_symlink(outside / "shared", outside / "inner");
    const auto before = fingerprint(folder_.path());
    for (const auto& item : {outside / "file", outside / "folder", outside / "inner", folder_ / "home 2/file",
                             home_ / "link/file", home_ / "Downloads/folder", caches_ / "../../link/folder/file"}) {
        const auto removal = removeItemAt(item);
        EXPECT_TRUE(!removal.gone && removal.reason == outsideText) << item << removal.reason.toStdString();
    }
    const auto found = std::make_shared<const FoundIn>(FoundIn{outside / "", files::statusOf(outside)->identity});
    EXPECT_EQ(ItemRemover(PrivilegedRemover::none()).remove(outside / "folder", found).reason, outsideText);
    EXPECT_EQ(fingerprint(folder_.path()), before);
    EXPECT_TRUE(removeItemAt(home_ / "link").gone) << "the link itself lies in the home";
    EXPECT_TRUE(removeItemAt(folder_ / "root/volume/file").gone);
    const SubstituteHome noTrial(home_);
    EXPECT_TRUE(removeItemAt(outside / "file").gone);
}

TEST_F(KeptFromRemoval, AreTheFoldersOfProgramsAndTheUsersOwn) {
    const auto data = folder_ / "data";
    const auto apps = folder_ / "disk/var/app";
    const SubstituteHome system(home_, {{"XDG_DATA_HOME", data}, {"XDG_STATE_HOME", folder_ / "state/"}});
    fs::create_directories(apps);
    fs::create_directory_symlink(folder_ / "disk/var", home_ / ".var");
    writeFile(home_ / ".config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/Library/Unterlagen\"\n");
    const std::vector<fs::path> kept = {apps,
                                        apps / "org.App",
                                        apps / "org.App/cache",
                                        apps / "org.App/cache/tmp",
                                        home_ / "snap/app/common/.cache",
                                        home_ / "snap/app/42/.cache",
                                        home_ / ".config/app",
                                        home_ / ".local/app",
                                        home_ / ".local/share/app",
                                        home_ / ".local/state/app",
                                        data / "app",
                                        folder_ / "state/app",
                                        home_ / "Library/Unterlagen",
                                        home_ / "Pictures",
                                        home_ / ".mozilla",
                                        home_ / ".ssh",
                                        home_ / ".gnupg"};
    for (const auto& folder : kept) {
        writeFile(folder / "item/inner/file", "12345");
        writeFile(folder / "tmp/file", "12345");
    }
    fs::create_directory_symlink("42", home_ / "snap/app/current");
    const auto before = fingerprint(folder_.path());
    auto refused = kept;
    for (const auto& folder : kept) {
        refused.push_back(folder.parent_path());
    }
    refused.push_back(home_ / "snap/app/current");
    refused.push_back(home_ / ".config/../.config/app");
    ItemRemover remover(PrivilegedRemover::none());
    for (const auto& folder : refused) {
        EXPECT_EQ(remover.remove(folder, nullptr).reason, QStringLiteral("Can't remove file")) << folder;
    }
    EXPECT_EQ(fingerprint(folder_.path()), before);
    for (const auto& folder : kept) {
        const bool isOfApps = folder == apps || folder == apps / "org.App";
        EXPECT_TRUE(remover.remove(isOfApps ? folder / "item/inner/file" : folder / "item", nullptr).gone) << folder;
    }
    EXPECT_TRUE(remover.remove(home_ / ".config/user-dirs.dirs", nullptr).gone);
    EXPECT_TRUE(remover.remove(apps / "org.App/cache/tmp/tmp", nullptr).gone);
}

TEST_F(KeptFromRemoval, AreTheFoldersOfTheSectionsAndWhatHoldsThem) {
    const auto root = folder_ / "root";
    const std::vector<fs::path> folders = {home_ / "Library/Logs",
                                           home_ / "Library/Application Support/CrashReporter",
                                           home_ / "Library/Containers",
                                           root / "Library/Logs",
                                           root / "Applications",
                                           trash_,
                                           trash_ / "../info",
                                           home_ / ".Trash",
                                           home_ / "Library/Caches",
                                           home_ / "Downloads",
                                           home_ / ".config/com.quorvel.brimvault"};
    for (const auto& folder : folders) {
        writeFile(folder / "item/file", "12345");
    }
    fs::create_directory_symlink("Logs", home_ / "Library/Link");
    const auto before = fingerprint(folder_.path());
    auto refused = folders;
    for (const auto& holder :
         {trash_.parent_path(), home_ / ".local", home_ / "Library/Application Support", root, root / "Library",
          home_ / ".config", home_ / "Library/../Library/Logs/", home_ / "Library", home_, folder_.path()}) {
        refused.push_back(holder);
    }
    for (const auto& folder : refused) {
        const auto removal = removeItemAt(folder);
        EXPECT_FALSE(removal.gone) << folder;
        EXPECT_EQ(removal.reason, QStringLiteral("Can't remove file")) << folder;
    }
    EXPECT_EQ(fingerprint(folder_.path()), before);
    EXPECT_TRUE(removeItemAt(home_ / "Library/Link").gone);  // the link, and not what it points at
    for (const auto& folder : folders) {
        EXPECT_TRUE(removeItemAt(folder.lexically_normal() / "item").gone) << folder;
        EXPECT_TRUE(fs::is_directory(folder)) << folder;
    }
}

}  // namespace brimvault::tests
