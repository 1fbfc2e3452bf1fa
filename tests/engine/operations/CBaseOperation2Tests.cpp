#include "engine/operations/CBaseOperation2.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <system_error>

#include "engine/notification/Notifications.h"
#include "engine/operations/FCutter.h"
#include "engine/operations/FileCleanOperations.h"
#include "engine/operations/OperationQueue.h"
#include "engine/removal/ProtectedFolders.h"
#include "support/ChildProcess.h"
#include "support/EventLoop.h"
#include "support/FixtureTrees.h"
#include "support/HeardNotifications.h"
#include "support/SectionWork.h"
#include "support/SubstituteHome.h"
#include "support/TextPrinting.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using namespace engine;
namespace fs = std::filesystem;

namespace {

QString systemText(int code) { return QString::fromStdString(std::generic_category().message(code)); }

class CleanOfFiles : public testing::Test {
protected:
    CleanOfFiles() {
        fs::create_directories(caches_);
        writeFile(folder_ / "home/Documents/letter", "precious");
    }

    static std::shared_ptr<FFItem> deletable(const std::shared_ptr<FFItem>& item) {
        item->setPpbDeletable(true);
        return item;
    }
    static std::shared_ptr<FFItem> at(const fs::path& path) { return deletable(FFItem::initWithPath(path, 1)); }
    static std::shared_ptr<FFItem> named(const std::string& name) { return deletable(FFItem::initWithName(name, 1)); }

    void clean(const ItemArray& items) { clean(items, caches_); }
    void clean(const ItemArray& items, const std::optional<fs::path>& folder) {
        removed_.clear();
        notRemoved_.clear();
        CChOperation(items, PrivilegedRemover::none()).removeItems(items, folder, removed_, notRemoved_);
    }

    TemporaryFolder folder_;
    const fs::path caches_ = folder_ / "home/Library/Caches";
    const SubstituteHome home_{folder_ / "home"};
    ItemArray removed_;
    NotRemovedDictionary notRemoved_;
};

}  // namespace

TEST_F(CleanOfFiles, LeavesWhatItMayNotRemoveSaysWhyAndGoesOn) {
    for (const char* name : {"unchecked", "undeletable", "zero", "inner/file", "after"}) {
        writeFile(caches_ / name, "12345");
    }
    fs::create_directory_symlink(folder_ / "home/Documents", caches_ / "link");
    const auto before = fingerprint(caches_, {"after"});
    ItemArray items = {at(caches_ / "unchecked"), FFItem::initWithPath(caches_ / "undeletable", 5),
                       deletable(FFItem::initWithPath(caches_ / "zero", 0)), at(caches_ / "link/letter")};
    items[0]->setPpbChecked(false);
    const NotRemovedDictionary behindALink = {{QStringLiteral("letter"), systemText(ENOTDIR)}};
    auto expected = behindALink;
    const auto documents = (folder_ / "home/Documents").native();
    for (const auto& name : {"", ".", "..", "inner/file", "../../Documents", "inner/", documents.c_str()}) {
        items.append(named(name));
        expected.insert(items.last()->ppdisplayName(), QStringLiteral("Can't remove file"));
    }
    items.append(named("after"));
    clean(items);
    EXPECT_EQ(notRemoved_, expected);
    EXPECT_EQ(removed_, ItemArray{items.last()});
    EXPECT_EQ(fingerprint(caches_), before);
    clean({named("letter")}, caches_ / "link");
    EXPECT_EQ(notRemoved_, behindALink);
    EXPECT_TRUE(fs::exists(folder_ / "home/Documents/letter"));
}

TEST_F(CleanOfFiles, RemovesByPathAndByNameAndCountsTheVanishedAsRemoved) {
    writeFile(caches_ / "by path/inner/file", "12345");
    ItemArray items = {at(caches_ / "by path"), at(caches_ / "vanished"), named("vanished too"),
                       at(folder_ / "no folder/vanished")};
    SampleHome::Fingerprint neighbours;
    for (const auto& name : oddNames()) {
        const auto neighbour = name.substr(0, 200) + "+";
        writeFile(caches_ / name / "file", "12345");
        writeFile(caches_ / neighbour, "");
        neighbours.emplace(neighbour, "file of 0 bytes: ");
        items.append(named(name));
    }
    clean(items);
    EXPECT_EQ(removed_, items);
    EXPECT_TRUE(notRemoved_.isEmpty());
    EXPECT_EQ(fingerprint(caches_), neighbours);
    clean({named("letter")}, std::nullopt);
    EXPECT_EQ(removed_.size(), 1) << "nobody knows where it was";
}

TEST_F(CleanOfFiles, KeepsATickedFolderAroundAnUntickedItem) {
    for (const char* file : {"folder/spared", "folder/ticked", "folder 2/file", "folder-3/file"}) {
        writeFile(caches_ / file, "12345");
    }
    const auto ticked = at(caches_ / "folder/ticked");
    const auto beside = at(caches_ / "folder 2");
    const auto spared = at(caches_ / "folder/spared");
    const auto another = at(caches_ / "folder-3/file");
    const auto whole = at(caches_ / "folder");
    whole->setPfname("com.a.app");
    spared->setPpbChecked(false);
    another->setPpbChecked(false);
    clean({ticked, beside, spared, another, whole});
    EXPECT_EQ(removed_, (ItemArray{ticked, beside}));
    EXPECT_EQ(notRemoved_, (NotRemovedDictionary{{QStringLiteral("com.a.app"),
                                                  QStringLiteral("It holds something that is not selected")}}));
    EXPECT_TRUE(fs::exists(caches_ / "folder/spared"));
    spared->setPpbChecked(true);
    clean({whole, spared});
    EXPECT_EQ(removed_, (ItemArray{whole, spared}));
    EXPECT_FALSE(fs::exists(caches_ / "folder"));
}

TEST_F(CleanOfFiles, RemovesNothingThatWasNotAgreedToNorWhatHoldsSuch) {
    const auto agreed = at(caches_ / "agreed");
    const auto tickedLater = at(caches_ / "ticked later");
    const auto untickedLater = at(caches_ / "unticked later");
    const auto folder = at(caches_ / "folder");
    const ItemArray asked = {agreed, tickedLater, untickedLater, folder};
    const ItemArray all = asked + ItemArray{at(caches_ / "folder/late"), at(caches_ / "late")};
    for (const auto& item : all) {
        item == folder ? void() : writeFile(item->pfpath(), "12345");
    }
    tickedLater->setPpbChecked(false);
    CChOperation operation(all, PrivilegedRemover::none());
    operation.restrictTo(std::make_shared<const AgreedItems>(asked));
    tickedLater->setPpbChecked(true);
    untickedLater->setPpbChecked(false);
    operation.removeItems(all, caches_, removed_, notRemoved_);
    EXPECT_EQ(removed_, ItemArray{agreed});
    EXPECT_EQ(notRemoved_.keys(), QStringList{QStringLiteral("folder")});
    EXPECT_FALSE(fs::exists(caches_ / "agreed"));
    for (const char* stays : {"ticked later", "unticked later", "folder/late", "late"}) {
        EXPECT_TRUE(fs::exists(caches_ / stays)) << stays;
    }
}

namespace {

// Does what it is told to when it is asked; it is asked for what the user may not remove.
class SurprisingRemover final : public PrivilegedRemover {
public:
    explicit SurprisingRemover(std::function<void()> surprise) : surprise_(std::move(surprise)) {}
    bool removeFileAtPath(const fs::path& /*path*/) override {
        surprise_();
        return false;
    }

private:
    const std::function<void()> surprise_;
};

}  // namespace

// The user may not remove the second item, so that the remover decides what becomes of the clean there.
TEST_F(CleanOfFiles, TellsWhatWentWhenItFailsOrIsGivenUp) {
    writeFile(caches_ / "closed/second", "12345");
    fs::permissions(caches_ / "closed", static_cast<fs::perms>(0555));
    const ItemArray items = {at(caches_ / "first"), at(caches_ / "closed/second"), at(caches_ / "third")};
    const auto words = vocabulary(Section::caches);
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        giveToNobody(folder_.path());
        becomeNobody();
        for (const bool fails : {true, false}) {
            writeFile(caches_ / "first", "12345");
            writeFile(caches_ / "third", "12345");
            const HeardNotifications heard = {words.cleanFinished};
            OperationQueue queue(1);
            SurprisingRemover remover([&] {
                if (fails) {
                    throw 1;
                }
                queue.giveUp([](const auto&) { return true; });
            });
            const auto clean = std::make_shared<CChOperation>(items, remover);
            queue.addOperation(clean);
            clean->waitUntilFinished();
            const bool hasEnded = runUntil([&] { return queue.leftBehind().empty(); });
            const auto gone = getArrayPropfromNotification<ItemArray>(heard.last(words.cleanFinished), words.arrayKey);
            if (!hasEnded || heard.names().size() != 1 || gone != ItemArray{items[0]} ||
                !fs::exists(caches_ / "third")) {
                return fails ? "failed" : "given up";
            }
        }
        return {};
    });
}

TEST_F(CleanOfFiles, PostsWhatIsGoneAndWhatIsNotForEachSectionInItsOwnFolder) {
    const std::pair<Section, fs::path> sections[] = {{Section::downloads, folder_ / "home/Downloads"},
                                                     {Section::caches, caches_},
                                                     {Section::trash, folder_ / "home/.Trash"}};
    const auto table = CleanTable::fileSections();
    for (const auto& [section, folder] : sections) {
        writeFile(folder / "item", "12345");
        const auto words = vocabulary(section);
        const HeardNotifications heard = {words.cleanFinished};
        const ItemArray items = {named("item"), named("..")};
        OperationQueue queue;
        const auto operation = table.files[section](items);
        queue.addOperation(operation);
        operation->waitUntilFinished();
        const auto posted = heard.last(words.cleanFinished);
        EXPECT_EQ(getArrayPropfromNotification<ItemArray>(posted, words.arrayKey), ItemArray{items[0]});
        EXPECT_EQ(getDictionaryPropfromNotification<NotRemovedDictionary>(posted, words.notCleanedKey),
                  (NotRemovedDictionary{{QStringLiteral(".."), QStringLiteral("Can't remove file")}}));
        EXPECT_FALSE(fs::exists(folder / "item"));
    }
}

}  // namespace brimvault::tests
