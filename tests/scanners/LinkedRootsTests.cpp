#include <gmock/gmock.h>

#include "engine/removal/ItemRemoval.h"
#include "langres/ApplicationRuns.h"
#include "support/FileSections.h"
#include "support/NameExchange.h"
#include "support/SubstituteHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using engine::ItemArray;
using engine::Section;
using platform::RootRefusal;
namespace fs = std::filesystem;

namespace {

/// A root folder of a section of files, and what an item in it needs to be found.
struct Root {
    Section section;
    fs::path named;  ///< below the home folder
    fs::path inner;  ///< where an item lies in it
};

class LinkedRoots : public testing::TestWithParam<Root> {
protected:
    LinkedRoots() {
        writeFile(disk_ / GetParam().inner, "12345");
        writeFile(other_ / GetParam().inner, "12345");
        fs::create_directories(link_.parent_path());
        fs::create_directory_symlink(disk_, link_);
    }

    ItemArray scan() {
        const HeardNotifications heard = {engine::notification::placesFound};
        auto items = scanSection(GetParam().section).items;
        places_ = engine::getPropfromNotification<engine::Places>(heard.last(engine::notification::placesFound),
                                                                  engine::key::places)
                      .value_or(engine::Places());
        for (const auto& item : items) {
            item->setPpbChecked(true);
        }
        return items;
    }

    [[nodiscard]] auto clean(const ItemArray& items) const { return cleanItems(GetParam().section, items); }
    [[nodiscard]] bool foundPlace(const fs::path& resolved, RootRefusal refusal) const {
        return std::any_of(places_.begin(), places_.end(), [&](const auto& place) {
            return place->named == link_ && place->resolved == resolved && place->refusal == refusal;
        });
    }

    void turnLinkTo(const fs::path& target) const {
        fs::remove(link_);
        fs::create_directory_symlink(target, link_);
    }
    [[nodiscard]] bool isThere(const fs::path& disk) const { return fs::exists(disk / GetParam().inner); }

    TemporaryFolder folder_;
    const fs::path home_ = folder_ / "home";
    const fs::path disk_ = folder_ / "root/disk/folder";
    const fs::path other_ = folder_ / "root/other";
    const fs::path link_ = home_ / GetParam().named;
    const SubstituteHome system_{home_, {{"BRIMVAULT_TRIAL_ROOT", folder_ / "root"}}};
    engine::Places places_;
};

const Root roots[] = {{Section::caches, "Library/Caches", "item/file"},
                      {Section::caches, "Library/Containers", "com.a.app/Data/Library/Caches/file"},
                      {Section::downloads, "Downloads", "item"},
                      {Section::logs, "Library/Logs", "item"},
                      {Section::logs, "Library/Containers", "com.a.app/Data/Library/Logs/file"},
                      {Section::trash, ".Trash", "item"},
                      {Section::trash, ".local/share/Trash", "files/item"}};

INSTANTIATE_TEST_SUITE_P(Sections, LinkedRoots, testing::ValuesIn(roots), [](const auto& tested) {
    auto name = tested.param.named.native() + std::to_string(static_cast<int>(tested.param.section));
    std::erase_if(name, [](char character) { return std::isalnum(static_cast<unsigned char>(character)) == 0; });
    return name;
});

}  // namespace

TEST_P(LinkedRoots, AreListedAndCleanedWhereTheyLead) {
    const auto items = scan();
    ASSERT_FALSE(items.isEmpty());
    EXPECT_TRUE(items[0]->location().native().starts_with(disk_.native())) << items[0]->location();
    EXPECT_TRUE(foundPlace(disk_, RootRefusal::none));
    EXPECT_TRUE(clean(items).isEmpty());
    EXPECT_FALSE(isThere(disk_));
    EXPECT_TRUE(isThere(other_));
}

TEST_P(LinkedRoots, AreCleanedOnlyWhileTheyLeadWhereTheyDid) {
    const auto items = scan();
    turnLinkTo(other_);
    const auto before = fingerprint(folder_.path());
    EXPECT_EQ(clean(items).value(items.last()->ppdisplayName()),
              QStringLiteral("Its folder is not the one that was scanned any more"));
    EXPECT_FALSE(
        engine::ItemRemover(engine::PrivilegedRemover::none()).remove(items[0]->location(), items[0]->foundIn()).gone)
        << "alone";
    EXPECT_EQ(fingerprint(folder_.path()), before);
    fs::remove(link_);
    EXPECT_FALSE(clean(items).isEmpty()) << "without the link";
    EXPECT_TRUE(isThere(disk_));
    turnLinkTo(disk_);
    EXPECT_TRUE(clean(items).isEmpty());
    EXPECT_FALSE(isThere(disk_));
}

TEST_P(LinkedRoots, AreNotCleanedOnceAnotherFolderStandsThere) {
    const auto items = scan();
    fs::rename(disk_, folder_ / "moved");
    fs::rename(other_, disk_);
    const auto before = fingerprint(folder_.path());
    EXPECT_EQ(clean(items).value(items.last()->ppdisplayName()),
              QStringLiteral("Its folder is not the one that was scanned any more"));
    EXPECT_EQ(fingerprint(folder_.path()), before);
    fs::remove_all(disk_);
    fs::create_directories((disk_ / GetParam().inner).parent_path());
    EXPECT_FALSE(clean(items).isEmpty()) << "nothing is gone where another folder is empty";
}

TEST_P(LinkedRoots, ThatLeadToTheUsersOwnAreNeitherListedNorCleaned) {
    const auto items = scan();
    writeFile(home_ / "Documents" / GetParam().inner, "12345");
    turnLinkTo(home_ / "Documents");
    EXPECT_TRUE(scan().isEmpty());
    EXPECT_TRUE(foundPlace(home_ / "Documents", RootRefusal::userFolder));
    EXPECT_FALSE(clean(items).isEmpty());
    const auto nameless = engine::FFItem::initWithName("item", 5);  // one that no scan has found
    nameless->setPpbDeletable(true);
    (void)clean({nameless});
    EXPECT_TRUE(isThere(home_ / "Documents"));
    EXPECT_TRUE(isThere(disk_));
}

TEST(LinkedApplications, KeepTheirLocalizationsOnceTheyAreNotTheOnesThatWereScanned) {
    const TemporaryFolder folder;
    const auto link = folder / "home/Applications";
    const SubstituteHome system(folder / "home", {{"BRIMVAULT_TRIAL_ROOT", folder / "root"}});
    makeLocalizations(folder / "root/disk/One.app/Contents/Resources", {"en.lproj", "de.lproj"});
    makeLocalizations(folder / "root/exchanged/Contents/Resources", {"en.lproj", "de.lproj"});
    fs::create_directories(folder / "home");
    fs::create_directories(folder / "root/other");
    fs::create_directory_symlink(folder / "root/disk", link);
    const auto applications = scanApplications(std::nullopt, link);
    ASSERT_EQ(applications.size(), 1);
    EXPECT_EQ(applications[0]->pAppName(), folder / "root/disk/One.app");
    applications[0]->recalcKeepSpaceForLocales({QStringLiteral("en")});
    const auto cleanChangesAnything = [&] {
        const auto before = fingerprint(folder.path());
        (void)runClean(makeClean(applications, {QStringLiteral("en")}));
        return fingerprint(folder.path()) != before;
    };
    fs::remove(link);
    fs::create_directory_symlink(folder / "root/other", link);
    EXPECT_FALSE(cleanChangesAnything()) << "their folder is another";
    fs::remove(link);
    fs::create_directory_symlink(folder / "root/disk", link);
    ASSERT_TRUE(exchangeNames(folder / "root/disk/One.app", folder / "root/exchanged"));
    EXPECT_FALSE(cleanChangesAnything()) << "another application of the same name";
    ASSERT_TRUE(exchangeNames(folder / "root/disk/One.app", folder / "root/exchanged"));
    EXPECT_TRUE(cleanChangesAnything());
}

}  // namespace brimvault::tests
