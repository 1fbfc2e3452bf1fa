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
#include "support/FixtureTrees.h"
#include "support/HeardNotifications.h"
#include "support/SectionWork.h"
#include "support/SubstituteHome.h"
#include "support/TextPrinting.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using engine::CChOperation;
using engine::FFItem;
using engine::ItemArray;
using engine::NotRemovedDictionary;
using engine::Section;
namespace fs = std::filesystem;

namespace {

QString systemText(int code) { return QString::fromStdString(std::generic_category().message(code)); }
const QString ownText = QStringLiteral("Can't remove file");

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

    void clean(const ItemArray& items) {
        removed_.clear();
        notRemoved_.clear();
        CChOperation(items, engine::PrivilegedRemover::none()).removeItems(items, caches_, removed_, notRemoved_);
    }

    TemporaryFolder folder_;
    const fs::path caches_ = folder_ / "home/Library/Caches";
    const SubstituteHome home_{folder_ / "home"};
    ItemArray removed_;
    NotRemovedDictionary notRemoved_;
};

}  // namespace

TEST_F(CleanOfFiles, PassesOverWhatIsUncheckedNotDeletableOrOfSizeZero) {
    for (const char* name : {"unchecked", "undeletable", "zero"}) {
        writeFile(caches_ / name, "12345");
    }
    const auto unchecked = at(caches_ / "unchecked");
    unchecked->setPpbChecked(false);
    const auto before = fingerprint(folder_.path());
    clean({unchecked, FFItem::initWithPath(caches_ / "undeletable", 5),
           deletable(FFItem::initWithPath(caches_ / "zero", 0))});
    EXPECT_TRUE(removed_.isEmpty());
    EXPECT_TRUE(notRemoved_.isEmpty());
    EXPECT_EQ(fingerprint(folder_.path()), before);
}

TEST_F(CleanOfFiles, RemovesByPathAndByNameAndCountsTheVanishedAsRemoved) {
    writeFile(caches_ / "by path/inner/file", "12345");
    writeFile(caches_ / "by name/inner/file", "12345");
    const ItemArray items = {at(caches_ / "by path"), named("by name"), at(caches_ / "vanished"), named("vanished too"),
                             at(folder_ / "no folder/vanished")};
    clean(items);
    EXPECT_EQ(removed_, items);
    EXPECT_TRUE(notRemoved_.isEmpty());
    EXPECT_TRUE(fs::is_empty(caches_));
}

TEST_F(CleanOfFiles, RemovesItemsOfOddNamesExactly) {
    ItemArray items;
    for (const auto& name : oddNames()) {
        writeFile(caches_ / name / "file", "12345");
        writeFile(caches_ / (name.substr(0, 200) + "+"), "a neighbour");
        items.append(named(name));
    }
    clean(items);
    EXPECT_EQ(removed_, items);
    for (const auto& name : oddNames()) {
        EXPECT_FALSE(fs::exists(caches_ / name)) << name;
        EXPECT_TRUE(fs::exists(caches_ / (name.substr(0, 200) + "+"))) << name;
    }
}

TEST_F(CleanOfFiles, LooksUpNoNameThatIsNotOneName) {
    writeFile(caches_ / "inner/file", "12345");
    const auto before = fingerprint(folder_.path());
    clean({named(""), named("."), named(".."), named("inner/file"), named("../../Documents"), named("inner/"),
           named((folder_ / "home/Documents").native())});
    EXPECT_TRUE(removed_.isEmpty());
    EXPECT_EQ(notRemoved_.size(), 7);
    EXPECT_EQ(notRemoved_.value(QStringLiteral("..")), ownText);
    EXPECT_EQ(fingerprint(folder_.path()), before);
}

TEST_F(CleanOfFiles, RefusesTheFoldersThatHoldItems) {
    for (const char* name : {"Downloads", ".Trash"}) {
        fs::create_directories(folder_ / "home" / name);
    }
    const auto before = fingerprint(folder_.path());
    const auto home = folder_ / "home";
    for (const auto& path : {home, home / "Library", caches_, home / "Downloads", home / ".Trash", fs::path("/"),
                             folder_.path(), home / "Documents/../Library/Caches", home / "Library/Caches/"}) {
        clean({at(path)});
        EXPECT_TRUE(removed_.isEmpty()) << path;
        EXPECT_EQ(notRemoved_.size(), 1) << path;
    }
    EXPECT_EQ(fingerprint(folder_.path()), before);
}

TEST_F(CleanOfFiles, RemovesALinkAndNotWhatItPointsAt) {
    fs::create_directory_symlink(folder_ / "home/Documents", caches_ / "link");
    fs::create_directory_symlink(folder_ / "home", caches_ / "home");
    fs::create_directories(caches_ / "folder");
    fs::create_directory_symlink(folder_ / "home/Documents", caches_ / "folder/link");
    const ItemArray items = {at(caches_ / "link"), at(caches_ / "home"), named("folder")};
    clean(items);
    EXPECT_EQ(removed_, items);
    EXPECT_TRUE(fs::exists(folder_ / "home/Documents/letter"));
}

TEST_F(CleanOfFiles, GivesTheSystemsReasonForWhatLiesBehindALink) {
    fs::create_directory_symlink(folder_ / "home/Documents", caches_ / "link");
    clean({at(caches_ / "link/letter")});
    EXPECT_TRUE(removed_.isEmpty());
    EXPECT_EQ(notRemoved_.value(QStringLiteral("letter")), systemText(ENOTDIR));
    EXPECT_TRUE(fs::exists(folder_ / "home/Documents/letter"));
}

TEST_F(CleanOfFiles, CleansNothingWhenTheSectionsFolderIsALink) {
    fs::remove(caches_);
    fs::create_directory_symlink(folder_ / "home/Documents", caches_);
    clean({named("letter")});
    EXPECT_TRUE(removed_.isEmpty());
    EXPECT_EQ(notRemoved_.value(QStringLiteral("letter")), systemText(ENOTDIR));
    EXPECT_TRUE(fs::exists(folder_ / "home/Documents/letter"));
}

TEST_F(CleanOfFiles, ReportsEachFailureWithTheSystemsReasonAndGoesOn) {
    makePermissions(caches_ / "tree");
    writeFile(caches_ / "after", "12345");
    writeFile(caches_ / "other/kept/closed", "12345");
    fs::permissions(caches_ / "other/kept", static_cast<fs::perms>(0555));
    giveToNobody(folder_.path());
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        becomeNobody();
        clean(
            {at(caches_ / "tree/full"), at(caches_ / "tree/closed/kept"), at(caches_ / "other/kept"), named("after")});
        const NotRemovedDictionary expected = {{QStringLiteral("full"), systemText(EACCES)},
                                               {QStringLiteral("kept"), systemText(EACCES)}};
        if (notRemoved_ != expected) {
            return "reported " + std::to_string(notRemoved_.size());
        }
        return removed_.size() == 1 && !fs::exists(caches_ / "after") ? "" : "it did not go on";
    });
}

TEST_F(CleanOfFiles, TouchesNothingMoreOnceItIsCancelled) {
    writeFile(caches_ / "item", "12345");
    const ItemArray items = {named("item"), named("vanished")};
    CChOperation operation(items, engine::PrivilegedRemover::none());
    operation.cancel();
    operation.removeItems(items, caches_, removed_, notRemoved_);
    EXPECT_TRUE(removed_.isEmpty());
    EXPECT_TRUE(notRemoved_.isEmpty());
    EXPECT_TRUE(fs::exists(caches_ / "item"));
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
    CChOperation operation(all, engine::PrivilegedRemover::none());
    operation.restrictTo(std::make_shared<const engine::AgreedItems>(asked));
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
class SurprisingRemover final : public engine::PrivilegedRemover {
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
    const auto first = at(caches_ / "first");
    const ItemArray items = {first, at(caches_ / "closed/second"), at(caches_ / "third")};
    const auto words = engine::vocabulary(Section::caches);
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        giveToNobody(folder_.path());
        becomeNobody();
        const auto whatWent = [&](const std::function<void()>& surprise,
                                  const std::function<void(engine::OperationQueue&)>& then) {
            writeFile(caches_ / "first", "12345");
            writeFile(caches_ / "third", "12345");
            SurprisingRemover remover(surprise);
            const HeardNotifications heard = {words.cleanFinished};
            engine::OperationQueue queue(1);
            const auto clean = std::make_shared<CChOperation>(items, remover);
            queue.addOperation(clean);
            then(queue);
            clean->waitUntilFinished();
            const auto gone =
                engine::getArrayPropfromNotification<ItemArray>(heard.last(words.cleanFinished), words.arrayKey);
            return heard.names().size() == 1 && gone == ItemArray{first} && fs::exists(caches_ / "third");
        };
        if (!whatWent([] { throw 1; }, [](auto&) {})) {
            return "failed";
        }
        const auto hang = std::make_shared<Hang>();
        const bool told = whatWent([hang] { hang->wait(); },
                                   [hang](engine::OperationQueue& queue) {
                                       while (!hang->holdsAny()) {
                                           std::this_thread::yield();
                                       }
                                       queue.giveUp([](const auto&) { return true; });
                                       hang->letOn();
                                       while (!queue.leftBehind().empty()) {
                                           std::this_thread::yield();
                                       }
                                   });
        return told ? "" : "given up";
    });
}

TEST_F(CleanOfFiles, CountsALogWithoutAPathAsRemoved) {
    ItemArray removed;
    engine::CLogsOperation({}, engine::PrivilegedRemover::none())
        .removeItems({named("letter")}, std::nullopt, removed, notRemoved_);
    EXPECT_EQ(removed.size(), 1);
    EXPECT_TRUE(notRemoved_.isEmpty());
}

TEST_F(CleanOfFiles, PostsWhatIsGoneAndWhatIsNotForEachSectionInItsOwnFolder) {
    const std::pair<Section, fs::path> sections[] = {{Section::downloads, folder_ / "home/Downloads"},
                                                     {Section::caches, caches_},
                                                     {Section::trash, folder_ / "home/.Trash"}};
    const auto table = engine::CleanTable::fileSections();
    for (const auto& [section, folder] : sections) {
        writeFile(folder / "item", "12345");
        const auto words = engine::vocabulary(section);
        const HeardNotifications heard = {words.cleanFinished};
        const ItemArray items = {named("item"), named("..")};
        engine::OperationQueue queue;
        const auto operation = table.files[section](items);
        queue.addOperation(operation);
        operation->waitUntilFinished();
        const auto posted = heard.last(words.cleanFinished);
        EXPECT_EQ(engine::getArrayPropfromNotification<ItemArray>(posted, words.arrayKey), ItemArray{items[0]});
        EXPECT_EQ(engine::getDictionaryPropfromNotification<NotRemovedDictionary>(posted, words.notCleanedKey),
                  (NotRemovedDictionary{{QStringLiteral(".."), ownText}}));
        EXPECT_FALSE(fs::exists(folder / "item"));
    }
}

}  // namespace brimvault::tests
