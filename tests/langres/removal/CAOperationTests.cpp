#include <gmock/gmock.h>
#include <sys/mount.h>

#include <QProcess>
#include <algorithm>
#include <cerrno>
#include <system_error>

#include "langres/ApplicationRuns.h"
#include "support/ChildProcess.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using testing::ElementsAre;
using testing::Pair;
using testing::UnorderedElementsAre;
using Paths = std::vector<std::filesystem::path>;
using NotCleaned = std::map<std::string, int>;
namespace fs = std::filesystem;

namespace {

const QStringList english = {QStringLiteral("en")};

// Keeps what it was asked, and answers as it is told.
class ToldRemover final : public engine::PrivilegedRemover {
public:
    bool removeFileAtPath(const fs::path& path, const Holder& /*folder*/) override {
        asked.push_back(path);
        return answer(path);
    }

    Paths asked;
    std::function<bool(const fs::path&)> answer = [](const fs::path&) { return false; };
};

class ApplicationsClean : public testing::Test {
protected:
    // A bundle with these localizations in its main resources.
    fs::path make(const char* name, std::initializer_list<const char*> localizations) {
        const auto bundle = folder_ / "Applications" / name;
        makeLocalizations(bundle / "Contents/Resources", localizations);
        return bundle;
    }
    // The applications that a scan lists, ordered by name.
    [[nodiscard]] engine::ApplicationArray scanned() const {
        auto applications = scanApplications(folder_ / "Applications");
        std::sort(applications.begin(), applications.end(),
                  [](const auto& a, const auto& b) { return a->pAppName() < b->pAppName(); });
        return applications;
    }
    enum class By { link, copy };
    void exchange(const fs::path& place, By what) const {
        fs::rename(place, folder_ / "precious");
        if (what == By::link) {
            fs::create_directory_symlink(folder_ / "precious", place);
        } else {
            fs::copy(folder_ / "precious", place, fs::copy_options::recursive);
        }
    }
    // Two languages of "Some" are told not to have gone.
    void expectThatAllStays(const engine::ApplicationArray& applications) const {
        const auto before = fingerprint(folder_.path());
        ToldRemover remover;
        const auto result = runClean(makeClean(applications, english, remover));
        EXPECT_TRUE(result.gone.empty());
        EXPECT_EQ(result.notCleaned, (NotCleaned{{"Some", 2}}));
        EXPECT_EQ(fingerprint(folder_.path()), before);
        EXPECT_THAT(remover.asked, testing::IsEmpty());
    }

    TemporaryFolder folder_;
};

}  // namespace

TEST_F(ApplicationsClean, PostsOnceWhatIsGoneOfTheApplicationsThatAreToBeCleaned) {
    const auto one = make("1.app", {"en.lproj", "de.lproj", "fr.lproj"});
    const auto two = make("2.app", {"en.lproj", "ja.lproj/inner", "ja.lproj"});
    const auto vanished = make("3.app", {"en.lproj", "de.lproj"});
    for (const char* name : {"4 unticked.app", "5 undeletable.app", "6 not agreed.app"}) {
        make(name, {"en.lproj", "de.lproj"});
    }
    const auto applications = scanned();
    ASSERT_EQ(applications.size(), 6);
    applications[3]->setPpbChecked(false);
    applications[4]->setPpbDeletable(false);
    fs::remove_all(one / "Contents/Resources/de.lproj");
    fs::remove_all(vanished);
    const auto before = fingerprint(folder_.path());
    EXPECT_EQ(runClean(makeClean(applications, {})).posts, 0) << "without languages to keep";
    EXPECT_EQ(fingerprint(folder_.path()), before);
    const auto left = fingerprint(folder_.path(), {"Applications/1.app/Contents/Resources/fr.lproj",
                                                   "Applications/2.app/Contents/Resources/ja.lproj"});
    const auto operation = makeClean(applications, english);
    operation->restrictTo(std::make_shared<const engine::AgreedItems>(applications.mid(0, 5)));
    const auto result = runClean(operation);
    EXPECT_EQ(result.posts, 1);
    EXPECT_THAT(result.gone,
                UnorderedElementsAre(Pair(one, UnorderedElementsAre(one / "Contents/Resources/de.lproj",
                                                                    one / "Contents/Resources/fr.lproj")),
                                     Pair(two, ElementsAre(two / "Contents/Resources/ja.lproj")),
                                     Pair(vanished, ElementsAre(vanished / "Contents/Resources/de.lproj"))));
    EXPECT_TRUE(result.notCleaned.empty());
    EXPECT_EQ(fingerprint(folder_.path()), left);
    EXPECT_EQ(runClean(makeClean({}, english)).posts, 1);
}

TEST_F(ApplicationsClean, LeavesWhatWasExchangedAndCountsItsLanguageOnce) {
    const auto bundle = make("Some.app", {"en.lproj", "de.lproj", "fr.lproj"});
    makeLocalizations(bundle / "PlugIns", {"en.lproj", "de.lproj"});
    const auto applications = scanned();
    exchange(bundle / "Contents/Resources/fr.lproj", By::link);
    for (const char* folder : {"Contents/Resources", "PlugIns"}) {
        fs::remove_all(bundle / folder / "de.lproj");
        writeFile(bundle / folder / "de.lproj", "a file");
    }
    expectThatAllStays(applications);
}

TEST_F(ApplicationsClean, LeavesWhatLiesInAFolderThatWasExchangedAndFollowsNoLinkOnTheWay) {
    const auto bundle = folder_ / "Applications/Some.app";
    for (const auto what : {By::link, By::copy}) {
        for (auto place = bundle / "Contents/Resources"; place != bundle.parent_path(); place = place.parent_path()) {
            SCOPED_TRACE(place);
            removeTree(bundle.parent_path());
            removeTree(folder_ / "precious");
            make("Some.app", {"en.lproj", "de.lproj", "fr.lproj"});
            const auto applications = scanned();
            exchange(place, what);
            expectThatAllStays(applications);
        }
    }
}

TEST_F(ApplicationsClean, LeavesTheLastLocalizationOfAFolderWhateverTheRecordSays) {
    const auto bundle = make("Some.app", {"de.lproj", "fr.lproj", "ja.lproj"});
    const auto shared = bundle / "Contents/Resources";
    const auto applications = scanned();
    const auto items = applications[0]->itemsToClean(english);
    ASSERT_EQ(items.size(), 2);
    for (const char* name : {"de.lproj", "fr.lproj", "ja.lproj"}) {
        if (shared / name != items[0]->plocPath && shared / name != items[1]->plocPath) {
            fs::remove_all(shared / name);  // the one that was to stay
        }
    }
    // None of these is a localization that an application could fall back on.
    makeLocalizations(shared, {"Base.lproj", ".it.lproj", "strings"});
    fs::create_directory_symlink("Base.lproj", shared / "es.lproj");
    writeFile(shared / "ko.lproj", "a file");
    const auto result = runClean(makeClean(applications, english));
    EXPECT_THAT(result.gone, ElementsAre(Pair(bundle, ElementsAre(items[0]->plocPath))));
    EXPECT_EQ(result.notCleaned, (NotCleaned{{"Some", 1}}));
    EXPECT_FALSE(fs::exists(items[0]->plocPath));
    EXPECT_TRUE(fs::exists(items[1]->plocPath / "Localizable.strings"));
}

TEST_F(ApplicationsClean, AsksThePrivilegedRemoverForWhatTheUserMayNotRemoveAndPostsWhatItHasDone) {
    const auto first = make("1.app", {"en.lproj", "de.lproj"});
    const auto second = make("2.app", {"en.lproj", "de.lproj", "fr.lproj"});
    makeLocalizations(second / "PlugIns", {"en.lproj", "de.lproj"});
    const auto third = make("3.app", {"en.lproj", "de.lproj"});
    const auto applications = scanned();
    Paths closed;
    for (const auto& item : applications[1]->itemsToClean(english)) {
        closed.push_back(item->plocPath);
        fs::permissions(item->plocPath.parent_path(), static_cast<fs::perms>(0555));
    }
    ASSERT_EQ(closed.size(), 3U);
    giveToNobody(folder_.path());
    const Paths ofFirst = {first / "Contents/Resources/de.lproj"};
    enum class Answer { thatCancels, thatFails, forFrench };
    const struct {
        Answer answer;
        Paths asked;
        std::map<fs::path, Paths> gone;
        NotCleaned notCleaned;
    } examples[] = {
        {Answer::thatCancels, {closed[0]}, {{first, ofFirst}, {second, {closed[0]}}}, {}},
        {Answer::thatFails, {closed[0]}, {{first, ofFirst}}, {}},
        {Answer::forFrench,
         closed,
         {{first, ofFirst},
          {second, {second / "Contents/Resources/fr.lproj"}},
          {third, {third / "Contents/Resources/de.lproj"}}},
         {{"2", 1}}},
    };
    for (const auto& example : examples) {
        EXPECT_WELL_IN_CHILD([&]() -> std::string {
            becomeNobody();
            ToldRemover remover;
            const auto operation = makeClean(applications, english, remover);
            remover.answer = [&](const fs::path& path) {
                if (example.answer == Answer::thatFails) {
                    throw std::runtime_error("a failure");
                }
                if (example.answer == Answer::thatCancels) {
                    operation->cancel();
                }
                return example.answer == Answer::thatCancels || path.filename() == "fr.lproj";
            };
            const auto result = runClean(operation);
            if (remover.asked != example.asked) {
                return "asked " + std::to_string(remover.asked.size()) + " times";
            }
            return result.posts == 1 && result.gone == example.gone && result.notCleaned == example.notCleaned
                       ? ""
                       : "told otherwise";
        });
    }
}

TEST_F(ApplicationsClean, AsksThePrivilegedRemoverNothingWhereTheFolderIsLocked) {
    const auto bundle = make("Some.app", {"en.lproj", "de.lproj"});
    makeLocalizations(bundle / "PlugIns", {"en.lproj", "fr.lproj"});
    const auto applications = scanned();
    const auto setLocked = [&](const char* mode) {
        const auto folder = QString::fromStdString(bundle / "Contents/Resources");
        const auto file = QString::fromStdString(bundle / "PlugIns/fr.lproj/Localizable.strings");
        return QProcess::execute(QStringLiteral("chattr"), {QString::fromLatin1(mode), folder, file}) == 0;
    };
    ToldRemover remover;
    const bool isLocked = setLocked("+i");
    const auto result = isLocked ? runClean(makeClean(applications, english, remover)) : CleanResult();
    setLocked("-i");
    if (!isLocked) {
        GTEST_SKIP() << "cannot lock files here";
    }
    EXPECT_THAT(remover.asked, ElementsAre(bundle / "PlugIns/fr.lproj"));
    EXPECT_TRUE(result.gone.empty());
    EXPECT_EQ(result.notCleaned, (NotCleaned{{"Some", 2}}));
}

TEST_F(ApplicationsClean, AsksThePrivilegedRemoverNothingWhereAnythingElseStandsInTheWay) {
    const auto bundle = make("Some.app", {"en.lproj", "de.lproj/inner"});
    const auto applications = scanned();
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        if (const auto reason = keepMountsPrivate(); !reason.empty()) {
            return cannotTry(reason);
        }
        const auto point = bundle / "Contents/Resources/de.lproj/inner";
        if (::mount("none", point.c_str(), "tmpfs", 0, "size=1m") != 0) {
            return cannotTry("mount: " + std::generic_category().message(errno));
        }
        ToldRemover remover;
        const auto result = runClean(makeClean(applications, english, remover));
        return remover.asked.empty() && result.notCleaned == NotCleaned{{"Some", 1}} ? "" : "it was asked";
    });
}

}  // namespace brimvault::tests
