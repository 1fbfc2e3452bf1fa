#include "langres/CAOperation.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "langres/ApplicationRuns.h"
#include "support/ChildProcess.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using engine::ApplicationArray;
using Paths = std::vector<std::filesystem::path>;
namespace fs = std::filesystem;

namespace {

const QStringList english = {QStringLiteral("en")};

// Keeps what it was asked, and answers as it is told.
class ToldRemover final : public engine::PrivilegedRemover {
public:
    bool removeFileAtPath(const fs::path& path) override {
        asked.push_back(path);
        return answer(path);
    }

    std::vector<fs::path> asked;
    std::function<bool(const fs::path&)> answer = [](const fs::path&) { return false; };
};

// Locks a file or folder against change, or unlocks it. 0, or why it could not be done.
int setLocked(const fs::path& file, bool locked) {
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    int flags = 0;
    int problem = ::ioctl(descriptor, FS_IOC_GETFLAGS, &flags) == 0 ? 0 : errno;
    flags = locked ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
    if (problem == 0 && ::ioctl(descriptor, FS_IOC_SETFLAGS, &flags) != 0) {
        problem = errno;
    }
    ::close(descriptor);
    return problem;
}

class ApplicationsClean : public testing::Test {
protected:
    // A bundle with these localizations in its main resources.
    fs::path make(const char* name, std::initializer_list<const char*> localizations) {
        const auto bundle = folder_ / "Applications" / name;
        makeLocalizations(bundle / "Contents/Resources", localizations);
        return bundle;
    }
    // The applications that a scan lists, ordered by name.
    [[nodiscard]] ApplicationArray scanned() const {
        auto applications = scanApplications(folder_ / "Applications");
        std::sort(applications.begin(), applications.end(),
                  [](const auto& a, const auto& b) { return a->pAppName() < b->pAppName(); });
        return applications;
    }

    TemporaryFolder folder_;
};

}  // namespace

TEST_F(ApplicationsClean, RemovesExactlyWhatIsToGoAndPostsIt) {
    const auto one = make("One.app", {"en.lproj", "de.lproj", "German.lproj", "Base.lproj"});
    makeLocalizations(one / "Contents/X.framework", {"fr.lproj", "en.lproj"});
    const auto two = make("Two.app", {"en.lproj", "ja.lproj/inner", "ja.lproj"});
    make("Kept.app", {"en.lproj", "English.lproj"});
    make("Unticked.app", {"en.lproj", "de.lproj"});
    make("Undeletable.app", {"en.lproj", "de.lproj"});
    const auto applications = scanned();
    ASSERT_EQ(applications.size(), 5);
    std::map<fs::path, Paths> expected;
    std::vector<fs::path> toGo;
    for (const auto& application : applications) {
        application->setPpbDeletable(application->ppdisplayName() != QLatin1String("Undeletable"));
        application->setPpbChecked(application->ppdisplayName() != QLatin1String("Unticked"));
        for (const auto& item : application->itemsToClean(english)) {
            expected[application->pAppName()].push_back(item->plocPath);
            toGo.push_back(item->plocPath.lexically_relative(folder_.path()));
        }
    }
    EXPECT_THAT(expected.at(one), testing::UnorderedElementsAre(one / "Contents/Resources/de.lproj",
                                                                one / "Contents/Resources/German.lproj",
                                                                one / "Contents/X.framework/fr.lproj"));
    EXPECT_EQ(expected.at(two), Paths{two / "Contents/Resources/ja.lproj"});
    const auto left = fingerprint(folder_.path(), toGo);
    const auto result = runClean(makeClean(applications, english));
    EXPECT_EQ(result.posts, 1);
    EXPECT_EQ(result.gone, expected);
    EXPECT_TRUE(result.notCleaned.empty());
    EXPECT_EQ(fingerprint(folder_.path()), left);
}

TEST_F(ApplicationsClean, RemovesAndPostsNothingWithoutLanguagesToKeep) {
    make("Some.app", {"en.lproj", "de.lproj"});
    const auto applications = scanned();
    const auto before = fingerprint(folder_.path());
    EXPECT_EQ(runClean(makeClean(applications, {})).posts, 0);
    EXPECT_EQ(fingerprint(folder_.path()), before);
    EXPECT_EQ(runClean(makeClean({}, english)).posts, 1);
}

TEST_F(ApplicationsClean, CountsWhatIsMissingAlreadyAsGone) {
    const auto bundle = make("Some.app", {"en.lproj", "de.lproj", "fr.lproj"});
    const auto applications = scanned();
    fs::remove_all(bundle / "Contents/Resources/de.lproj");
    auto result = runClean(makeClean(applications, english));
    EXPECT_EQ(result.gone.at(bundle).size(), 2U);
    EXPECT_TRUE(result.notCleaned.empty());
    EXPECT_TRUE(fs::exists(bundle / "Contents/Resources/en.lproj"));
    fs::remove_all(bundle);
    result = runClean(makeClean(applications, english));
    EXPECT_EQ(result.gone.at(bundle).size(), 2U);
    EXPECT_TRUE(result.notCleaned.empty());
}

TEST_F(ApplicationsClean, LeavesWhatWasExchangedAndCountsItsLanguageOnce) {
    const auto bundle = make("Some.app", {"en.lproj", "de.lproj", "fr.lproj"});
    makeLocalizations(bundle / "PlugIns", {"en.lproj", "de.lproj"});
    const auto applications = scanned();
    makeLocalizations(folder_ / "precious", {"fr.lproj"});
    for (const auto& localization : {bundle / "Contents/Resources/de.lproj", bundle / "PlugIns/de.lproj",
                                     bundle / "Contents/Resources/fr.lproj"}) {
        fs::remove_all(localization);
    }
    fs::create_directory_symlink(folder_ / "precious/fr.lproj", bundle / "Contents/Resources/fr.lproj");
    writeFile(bundle / "Contents/Resources/de.lproj", "a file");
    writeFile(bundle / "PlugIns/de.lproj", "a file");
    const auto before = fingerprint(folder_.path());
    ToldRemover remover;
    const auto result = runClean(makeClean(applications, english, remover));
    EXPECT_TRUE(result.gone.empty());
    EXPECT_EQ(result.notCleaned, (std::map<std::string, int>{{"Some", 2}}));
    EXPECT_EQ(fingerprint(folder_.path()), before);
    EXPECT_THAT(remover.asked, testing::IsEmpty());
}

TEST_F(ApplicationsClean, FollowsNoLinkOnTheWay) {
    for (const char* exchanged : {"Contents/Resources", "Contents", "."}) {
        removeTree(folder_ / "Applications");
        removeTree(folder_ / "precious");
        const auto bundle = make("Some.app", {"en.lproj", "de.lproj", "fr.lproj"});
        const auto applications = scanned();
        const auto place = exchanged == std::string(".") ? bundle : bundle / exchanged;
        fs::rename(place, folder_ / "precious");
        fs::create_directory_symlink(folder_ / "precious", place);
        const auto before = fingerprint(folder_.path());
        ToldRemover remover;
        const auto result = runClean(makeClean(applications, english, remover));
        EXPECT_EQ(fingerprint(folder_.path()), before) << exchanged;
        EXPECT_EQ(result.notCleaned, (std::map<std::string, int>{{"Some", 2}})) << exchanged;
        EXPECT_TRUE(result.gone.empty());
        EXPECT_THAT(remover.asked, testing::IsEmpty()) << exchanged;
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
    EXPECT_EQ(result.gone, (std::map<fs::path, Paths>{{bundle, {items[0]->plocPath}}}));
    EXPECT_EQ(result.notCleaned, (std::map<std::string, int>{{"Some", 1}}));
    EXPECT_FALSE(fs::exists(items[0]->plocPath));
    EXPECT_TRUE(fs::exists(items[1]->plocPath / "Localizable.strings"));
}

TEST_F(ApplicationsClean, AsksThePrivilegedRemoverOnceForEachFolderThatTheUserMayNotRemove) {
    const auto bundle = make("Some.app", {"en.lproj", "de.lproj", "fr.lproj"});
    makeLocalizations(bundle / "PlugIns", {"en.lproj", "de.lproj"});
    makeLocalizations(bundle / "Free", {"en.lproj", "ja.lproj"});
    const auto applications = scanned();
    Paths closed;
    Paths gone;
    for (const auto& item : applications[0]->itemsToClean(english)) {
        const bool free = item->plocPath.parent_path() == bundle / "Free";
        if (!free) {
            closed.push_back(item->plocPath);
            fs::permissions(item->plocPath.parent_path(), static_cast<fs::perms>(0555));
        }
        if (free || item->plocNameId == QLatin1String("fr")) {
            gone.push_back(item->plocPath);
        }
    }
    ASSERT_TRUE(closed.size() == 3 && gone.size() == 2);
    giveToNobody(folder_.path());
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        becomeNobody();
        ToldRemover remover;
        remover.answer = [](const fs::path& path) { return path.filename() == "fr.lproj"; };
        const auto result = runClean(makeClean(applications, english, remover));
        if (remover.asked != closed) {
            return "it was asked " + std::to_string(remover.asked.size()) + " times";
        }
        if (result.gone != std::map<fs::path, Paths>{{bundle, gone}}) {
            return "other folders are gone";
        }
        return result.notCleaned == std::map<std::string, int>{{"Some", 1}} ? "" : "the languages are counted wrongly";
    });
}

TEST_F(ApplicationsClean, AsksThePrivilegedRemoverNothingWhereTheFolderIsLocked) {
    const auto bundle = make("Some.app", {"en.lproj", "de.lproj"});
    makeLocalizations(bundle / "PlugIns", {"en.lproj", "fr.lproj"});
    const auto applications = scanned();
    const auto locked = {bundle / "Contents/Resources", bundle / "PlugIns/fr.lproj/Localizable.strings"};
    int problem = 0;
    for (const auto& place : locked) {
        problem = std::max(problem, setLocked(place, true));
    }
    ToldRemover remover;
    const auto result = problem == 0 ? runClean(makeClean(applications, english, remover)) : CleanResult();
    for (const auto& place : locked) {
        (void)setLocked(place, false);
    }
    if (problem != 0) {
        GTEST_SKIP() << "cannot lock here: " << std::generic_category().message(problem);
    }
    EXPECT_EQ(remover.asked, Paths{bundle / "PlugIns/fr.lproj"});
    EXPECT_TRUE(result.gone.empty());
    EXPECT_EQ(result.notCleaned, (std::map<std::string, int>{{"Some", 2}}));
    EXPECT_TRUE(fs::exists(bundle / "Contents/Resources/de.lproj"));
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
        return remover.asked.empty() && result.notCleaned == std::map<std::string, int>{{"Some", 1}} ? ""
                                                                                                     : "it was asked";
    });
}

TEST_F(ApplicationsClean, PostsWhatItHasDoneWhenItIsCancelledOrFailsUnderWay) {
    const auto first = make("1.app", {"en.lproj", "de.lproj"});
    const auto second = make("2.app", {"en.lproj", "de.lproj", "fr.lproj"});
    const auto third = make("3.app", {"en.lproj", "de.lproj"});
    const auto applications = scanned();
    const auto items = applications[1]->itemsToClean(english);
    fs::permissions(second / "Contents/Resources", static_cast<fs::perms>(0555));
    giveToNobody(folder_.path());
    enum class Answer { granted, refused, failure };
    for (const Answer answer : {Answer::granted, Answer::refused, Answer::failure}) {
        EXPECT_WELL_IN_CHILD([&]() -> std::string {
            becomeNobody();
            ToldRemover remover;
            const auto operation = makeClean(applications, english, remover);
            remover.answer = [&](const fs::path&) {
                if (answer == Answer::failure) {
                    throw std::runtime_error("a failure");
                }
                operation->cancel();
                return answer == Answer::granted;
            };
            const auto result = runClean(operation);
            std::map<fs::path, Paths> gone = {{first, {first / "Contents/Resources/de.lproj"}}};
            if (answer == Answer::granted) {
                gone[second] = {items[0]->plocPath};
            }
            if (result.posts != 1 || result.gone != gone ||
                result.notCleaned.size() != (answer == Answer::refused ? 1 : 0)) {
                return "posted something else";
            }
            return remover.asked == Paths{items[0]->plocPath} ? "" : "it went on";
        });
        EXPECT_TRUE(fs::exists(third / "Contents/Resources/de.lproj"));
    }
}

}  // namespace brimvault::tests
