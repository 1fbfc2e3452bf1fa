#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <system_error>

#include "engine/removal/FileCleanOperations.h"
#include "engine/removal/ItemRemoval.h"
#include "files/FileDescriptor.h"
#include "files/NodeStatus.h"
#include "support/ChildProcess.h"
#include "support/EventLoop.h"
#include "support/FileSections.h"
#include "support/FixtureTrees.h"
#include "support/SubstituteHome.h"
#include "support/TextPrinting.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using namespace engine;
namespace fs = std::filesystem;

namespace {

QString systemText(int code) { return QString::fromStdString(std::generic_category().message(code)); }

std::shared_ptr<FFItem> deletable(std::shared_ptr<FFItem> item) {
    item->setPpbDeletable(true);
    return item;
}
std::shared_ptr<FFItem> at(const fs::path& path) { return deletable(FFItem::initWithPath(path, 1)); }
std::shared_ptr<FFItem> named(const std::string& name) { return deletable(FFItem::initWithName(name, 1)); }

// Locks a file or folder against removal for as long as it lives, where the system lets it.
struct Lock {
    Lock(const fs::path& path, int flag) : file(::open(path.c_str(), O_RDONLY | O_CLOEXEC)), before(0), isHeld(false) {
        isHeld = ::ioctl(file.number(), FS_IOC_GETFLAGS, &before) == 0 && set(before | flag);
    }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    ~Lock() {
        if (isHeld) {
            (void)set(before);
        }
    }
    [[nodiscard]] bool set(int flags) const { return ::ioctl(file.number(), FS_IOC_SETFLAGS, &flags) == 0; }

    files::FileDescriptor file;
    int before;
    bool isHeld;
};

class CleanOfFiles : public testing::Test {
protected:
    CleanOfFiles() {
        fs::create_directories(caches_);
        writeFile(home_ / "Documents/letter", "precious");
    }

    void clean(const ItemArray& items) { clean(items, caches_); }
    void clean(const ItemArray& items, const std::optional<fs::path>& folder) {
        removed_.clear();
        notRemoved_.clear();
        CChOperation(items, PrivilegedRemover::none()).removeItems(items, folder, removed_, notRemoved_);
    }

    /// One that has the path of `caches_ / "app"`, and stands for other things.
    [[nodiscard]] std::shared_ptr<FFItem> standingFor(const std::vector<fs::path>& paths) const {
        ItemDetails details;
        for (const auto& path : paths) {
            const FoundIn folder{path.parent_path().native() + "/", identityOf(path.parent_path())};
            details.targets.push_back({std::make_shared<const FoundIn>(folder), {path.filename().native()}});
        }
        auto item = at(caches_ / "app");
        item->setDetails(std::move(details));
        return item;
    }
    static std::optional<files::FileIdentity> identityOf(const fs::path& folder) {
        const auto status = files::statusOf(folder);
        return status ? std::optional(status->identity) : std::nullopt;
    }

    static fs::path recordOf(const fs::path& item) {
        return item.parent_path().parent_path() / "info" / (item.filename().native() + ".trashinfo");
    }
    static fs::path makeTrashed(const fs::path& item) {
        writeFile(item / "inner/file", "12345");
        writeFile(recordOf(item), "[Trash Info]\nPath=/x\n");
        return item;
    }

    TemporaryFolder folder_;
    const fs::path home_ = folder_ / "home";
    const fs::path caches_ = home_ / "Library/Caches";
    const fs::path trash_ = home_ / ".local/share/Trash/files";
    const SubstituteHome system_{home_, {{"BRIMVAULT_TRIAL_ROOT", folder_ / "root"}}};
    ItemArray removed_;
    NotRemovedDictionary notRemoved_;
};

}  // namespace

TEST_F(CleanOfFiles, LeavesWhatItMayNotRemoveSaysWhyAndGoesOn) {
    for (const char* name : {"unchecked", "undeletable", "zero", "inner/file", "after"}) {
        writeFile(caches_ / name, "12345");
    }
    fs::create_directory_symlink(home_ / "Documents", caches_ / "link");
    const auto before = fingerprint(caches_, {"after"});
    ItemArray items = {at(caches_ / "unchecked"), FFItem::initWithPath(caches_ / "undeletable", 5),
                       deletable(FFItem::initWithPath(caches_ / "zero", 0)), at(caches_ / "link/letter")};
    items[0]->setPpbChecked(false);
    const NotRemovedDictionary behindALink = {{QStringLiteral("letter"), systemText(ENOTDIR)}};
    auto expected = behindALink;
    const auto documents = (home_ / "Documents").native();
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
    EXPECT_TRUE(fs::exists(home_ / "Documents/letter"));
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
        neighbours.emplace(neighbour, fingerprint(caches_).at(neighbour));
        items.append(named(name));
    }
    clean(items);
    EXPECT_EQ(removed_, items);
    EXPECT_TRUE(notRemoved_.isEmpty());
    EXPECT_EQ(fingerprint(caches_), neighbours);
    clean({named("letter")}, std::nullopt);
    EXPECT_EQ(removed_.size(), 1) << "nobody knows where it was";
}

// With its folder an item is gone, but not with its disk.
TEST_F(CleanOfFiles, CountsNothingAsRemovedThatLiesOnADiskWhichIsAway) {
    const auto device = files::statusOf(folder_.path())->identity.device;
    ItemArray items;
    for (const auto deviceOfFolder : {device, device + 1}) {
        items.append(at(folder_ / "no folder/inner/item"));
        items.last()->setFoundIn(
            std::make_shared<const FoundIn>(FoundIn{folder_ / "no folder/inner/", {{deviceOfFolder, 1, {}}}}),
            FFItem::FoundPathKind::folder);
    }
    clean(items);
    EXPECT_EQ(removed_, ItemArray{items[0]});
    EXPECT_EQ(notRemoved_.value(QStringLiteral("item")), systemText(ENOENT));
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

TEST_F(CleanOfFiles, RemovesWhatAnItemStandsForAndNeverWhatItsPathNames) {
    for (const char* file : {"app/file", "one/target/file", "one/other", "two/target", "exchanged/target"}) {
        writeFile(caches_ / file, "12345");
    }
    const auto whole = standingFor({caches_ / "one/target", caches_ / "two/target", caches_ / "two/vanished"});
    const auto part = standingFor({caches_ / "one/..", caches_ / "exchanged/target", caches_ / "one/other"});
    fs::rename(caches_ / "exchanged", caches_ / "moved");
    writeFile(caches_ / "exchanged/target", "another");
    clean({whole});
    EXPECT_EQ(removed_, ItemArray{whole});
    clean({part});
    EXPECT_EQ(notRemoved_, (NotRemovedDictionary{{QStringLiteral("app"), QStringLiteral("Can't remove file")}}))
        << "the first that stays";
    for (const char* gone : {"one/target", "two/target", "one/other"}) {
        EXPECT_FALSE(fs::exists(caches_ / gone)) << gone;
    }
    for (const char* stays : {"app/file", "moved/target", "exchanged/target"}) {
        EXPECT_TRUE(fs::exists(caches_ / stays)) << stays;
    }
}

TEST_F(CleanOfFiles, KeepsATargetThatIsOrHoldsWhatIsUntickedAndAFolderThatHoldsATarget) {
    for (const char* file : {"holder/unticked", "same", "free", "folder/target"}) {
        writeFile(caches_ / file, "12345");
    }
    const auto inner = at(caches_ / "holder/unticked");
    const auto same = at(caches_ / "same");
    const auto untickedTarget = standingFor({caches_ / "folder/target"});
    for (const auto& item : {inner, same, untickedTarget}) {
        item->setPpbChecked(false);
    }
    const auto several = standingFor({caches_ / "free", caches_ / "holder", caches_ / "same"});
    const auto folder = at(caches_ / "folder");
    clean({inner, same, untickedTarget, several, folder});
    EXPECT_EQ(removed_, ItemArray());
    const auto reason = QStringLiteral("It holds something that is not selected");
    EXPECT_EQ(notRemoved_, (NotRemovedDictionary{{QStringLiteral("app"), reason}, {QStringLiteral("folder"), reason}}));
    EXPECT_FALSE(fs::exists(caches_ / "free"));
    for (const char* stays : {"holder/unticked", "same", "folder/target"}) {
        EXPECT_TRUE(fs::exists(caches_ / stays)) << stays;
    }
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

// The user may not remove the second item, so that the remover decides what becomes of the clean there.
TEST_F(CleanOfFiles, TellsWhatWentWhenItFailsOrIsGivenUp) {
    struct SurprisingRemover final : PrivilegedRemover {
        bool removeFileAtPath(const fs::path& path, const Holder& folder) override {
            isFolderTold = folder && folder == files::statusOf(path.parent_path())->identity;
            surprise();
            return false;
        }
        std::function<void()> surprise;
        bool isFolderTold = false;
    };
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
            SurprisingRemover remover;
            remover.surprise = [&] { fails ? throw 1 : queue.giveUp([](const auto&) { return true; }); };
            const auto clean = std::make_shared<CChOperation>(items, remover);
            queue.addOperation(clean);
            clean->waitUntilFinished();
            const bool hasEnded = runUntil([&] { return queue.leftBehind().empty(); });
            const auto gone = getArrayPropfromNotification<ItemArray>(heard.last(words.cleanFinished), words.arrayKey);
            if (!remover.isFolderTold || !hasEnded || heard.names().size() != 1 || gone != ItemArray{items[0]} ||
                !fs::exists(caches_ / "third")) {
                return fails ? "failed" : "given up";
            }
        }
        return {};
    });
}

// A module cache whose folders all are read-only, which is what its program makes of them.
TEST_F(CleanOfFiles, AsksForAPasswordOnlyWhereItHelps) {
    struct AskedRemover final : PrivilegedRemover {
        bool removeFileAtPath(const fs::path& path, const Holder& /*folder*/) override {
            asked.push_back(path.filename());
            return false;
        }
        std::vector<std::string> asked;
    };
    for (const char* item : {"own", "foreign", "locked"}) {
        writeFile(caches_ / item / "mod/module@v1/file", "12345");
    }
    writeFile(caches_ / "appended", "12345");
    giveToNobody(folder_.path());
    for (const char* folder : {"own/mod/module@v1", "own/mod", "own"}) {
        fs::permissions(caches_ / folder, static_cast<fs::perms>(0555));
    }
    const Lock immutable(caches_ / "locked", FS_IMMUTABLE_FL);
    const Lock appendOnly(caches_ / "appended", FS_APPEND_FL);
    if (::lchown((caches_ / "foreign/mod/module@v1").c_str(), 0, 0) != 0 || !immutable.isHeld || !appendOnly.isHeld) {
        GTEST_SKIP() << "files cannot be locked or given away here";
    }
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        becomeNobody();
        AskedRemover remover;
        std::string kept;
        for (const char* item : {"own", "foreign", "locked", "appended"}) {
            const auto removal = removeItemAt(caches_ / item, remover);
            kept += removal.gone ? "" : item + (": " + removal.reason.toStdString() + "\n");
        }
        const bool isRight = remover.asked == std::vector<std::string>{"foreign"} &&
                             kept ==
                                 "foreign: Permission denied\nlocked: Operation not permitted\n"
                                 "appended: Operation not permitted\n";
        return isRight ? "" : kept + testing::PrintToString(remover.asked);
    });
    EXPECT_FALSE(fs::exists(caches_ / "own"));
}

TEST_F(CleanOfFiles, LooksForNamesInTheFolderOfTheirSection) {
    const NotRemovedDictionary expected = {{QStringLiteral(".."), QStringLiteral("Can't remove file")}};
    const std::pair<Section, fs::path> sections[] = {
        {Section::downloads, home_ / "Downloads"}, {Section::caches, caches_}, {Section::trash, home_ / ".Trash"}};
    for (const auto& [section, folder] : sections) {
        writeFile(folder / "item", "12345");
        EXPECT_EQ(cleanItems(section, {named("item"), named("..")}), expected);
        EXPECT_FALSE(fs::exists(folder / "item"));
    }
}

TEST_F(CleanOfFiles, TellsTheSystemsReasonInTheUsersLanguage) {
    constexpr std::size_t tooLong = 300;
    const auto item = home_ / std::string(tooLong, 'x');
    const QString inEnglish = removeItemAt(item).reason;
    EXPECT_EQ(inEnglish, QStringLiteral("File name too long"));
    if (!fs::exists("/usr/share/locale/de/LC_MESSAGES/libc.mo")) {
        GTEST_SKIP() << "the system does not speak German: libc-l10n is not installed";
    }
    const std::string locale = std::setlocale(LC_ALL, nullptr);
    const QByteArray languages = qgetenv("LANGUAGE");
    qputenv("LANGUAGE", "de");
    std::setlocale(LC_ALL, "C.UTF-8");
    EXPECT_EQ(removeItemAt(item).reason, QStringLiteral("Der Dateiname ist zu lang"));
    qputenv("LANGUAGE", languages);
    std::setlocale(LC_ALL, locale.c_str());
}

TEST_F(CleanOfFiles, TakesTheRecordOfATrashedItemAlongAndNoOther) {
    const auto user = std::to_string(::getuid());
    const std::pair<fs::path, bool> folders[] = {{trash_, true},
                                                 {folder_ / "root/volume/.Trash" / user / "files", true},
                                                 {folder_ / "root/volume" / (".Trash-" + user) / "files", true},
                                                 {home_ / "Documents/files", false},
                                                 {folder_ / "root/volume/.Trash-4711/files", false},
                                                 {folder_ / "root/.Trash/4711/files", false},
                                                 {home_ / ".local/share/Trash/other", false}};
    for (const auto& [files, isTrash] : folders) {
        const auto neighbour = makeTrashed(files / "neighbour");
        for (const char* name : {"item", "line\nbreak \xff", "item.trashinfo", ".hidden"}) {
            const auto item = makeTrashed(files / name);
            EXPECT_TRUE(removeItemAt(item).gone) << item;
            EXPECT_FALSE(fs::exists(item)) << item;
            EXPECT_EQ(fs::exists(recordOf(item)), !isTrash) << item;
        }
        EXPECT_TRUE(removeItemAt(neighbour / "inner").gone);
        EXPECT_TRUE(fs::exists(recordOf(neighbour)));
    }
}

TEST_F(CleanOfFiles, LeavesARecordThatIsNoPlainFileOrBelongsToAnother) {
    const auto linked = makeTrashed(trash_ / "linked");
    fs::rename(recordOf(linked), home_ / "precious");
    fs::create_symlink(home_ / "precious", recordOf(linked));
    const auto foldered = makeTrashed(trash_ / "foldered");
    fs::remove(recordOf(foldered));
    writeFile(recordOf(foldered) / "file", "12345");
    const auto bare = makeTrashed(trash_ / "bare");
    fs::remove(recordOf(bare));
    const auto goneBefore = makeTrashed(trash_ / "gone before");
    removeTree(goneBefore);
    const auto records = fingerprint(home_, {".local/share/Trash/files"});
    for (const auto& item : {linked, foldered, bare, goneBefore}) {
        EXPECT_TRUE(removeItemAt(item).gone) << item;
    }
    EXPECT_EQ(fingerprint(home_, {".local/share/Trash/files"}), records);

    const auto item = makeTrashed(trash_ / "item");
    fs::rename(trash_ / "../info", home_ / "elsewhere");
    fs::create_directory_symlink(home_ / "elsewhere", trash_ / "../info");
    EXPECT_TRUE(removeItemAt(item).gone);
    EXPECT_TRUE(fs::exists(home_ / "elsewhere/item.trashinfo")) << "behind a link";
}

TEST_F(CleanOfFiles, KeepsTheRecordOfWhatCouldNotBeRemoved) {
    const auto item = makeTrashed(trash_ / "item");
    giveToNobody(folder_.path());
    if (::lchown((item / "inner").c_str(), 0, 0) != 0) {
        GTEST_SKIP() << "a folder of another owner is for the administrator to make";
    }
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        becomeNobody();
        const auto removal = removeItemAt(item);
        if (removal.gone || removal.reason != systemText(EACCES)) {
            return "answered " + removal.reason.toStdString();
        }
        return fs::exists(item / "inner/file") && fs::exists(recordOf(item)) ? "" : "something is gone";
    });
}

// The home and the root of a trial are made up, and a link could lead to the user's real files.
}  // namespace brimvault::tests
