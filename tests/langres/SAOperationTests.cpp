#include <gmock/gmock.h>
#include <sys/mount.h>
#include <sys/xattr.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <thread>

#include "langres/ApplicationRuns.h"
#include "support/ChildProcess.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace trial;

using engine::ApplicationArray;
using engine::Notification;
using langres::SAOperation;
namespace fs = std::filesystem;

namespace {

std::string infoOf(const std::string& identifier) {
    return "<plist><dict><key>CFBundleIdentifier</key><string>" + identifier + "</string></dict></plist>";
}

std::vector<std::string> namesOf(const ApplicationArray& applications) {
    std::vector<std::string> names;
    std::transform(applications.begin(), applications.end(), std::back_inserter(names),
                   [](const auto& application) { return application->pAppName().filename().native(); });
    return names;
}

// Relative path, identifier and size of each localization.
std::vector<std::string> localizationsOf(const engine::AppItemData& application) {
    std::vector<std::string> found;
    for (const auto& item : application.pLocalizations()) {
        found.push_back(item->plocPath.lexically_relative(application.pAppName()).native() + " " +
                        item->plocNameId.toStdString() + " " + std::to_string(item->nlocSize));
    }
    return found;
}

// "all 1 of 3, 33%": which array a progress held, with its length, the total and the per cents.
std::string described(const Notification& progress) {
    const bool whole = progress.userInfo.contains(resources.arrayKey);
    EXPECT_EQ(progress.userInfo.size(), 3);
    const auto applications = engine::getArrayPropfromNotification<ApplicationArray>(
        progress, whole ? resources.arrayKey : resources.deltaKey);
    const auto number = [&](const QString& key) {
        return std::to_string(engine::getNumberPropfromNotification(progress, key).value_or(-1));
    };
    return (whole ? "all " : "delta ") + std::to_string(applications ? applications->size() : -1) + " of " +
           number(engine::key::totalCount) + ", " + number(engine::key::progressPercent) + "%";
}

class ApplicationsScan : public testing::Test {
protected:
    /// With two localizations; with one and "Base"; with two, of an application of the system's own.
    enum class Kind { listed, bare, guarded };

    void make(const fs::path& folder, const std::vector<Kind>& kinds) const {
        for (std::size_t number = 0; number < kinds.size(); ++number) {
            const auto bundle = folder / (std::to_string(number) + ".app");
            makeLocalizations(bundle / "Contents/Resources",
                              {"en.lproj", kinds[number] == Kind::bare ? "Base.lproj" : "de.lproj"});
            if (kinds[number] == Kind::guarded) {
                writeFile(bundle / "Contents/Info.plist", infoOf("com.apple.Safari"));
            }
        }
    }

    TemporaryFolder folder_;
    const fs::path system_ = folder_ / "Applications";
    const fs::path user_ = folder_ / "home/Applications";
};

}  // namespace

TEST_F(ApplicationsScan, FindsPackagesInPlainFoldersOfTheSystemAndThenOfTheUser) {
    for (const char* bundle :
         {"home/Applications/One.app", "Applications/Utilities/More/Two.app", "Applications/Three.bundle",
          "Applications/Two.app/Contents/Four.app", "Applications/.hidden/Five.app", "Applications/.Six.app",
          "Applications/Plain", "elsewhere/Seven.app"}) {
        makeLocalizations(folder_ / bundle / "Contents/Resources", {"en.lproj", "de.lproj"});
    }
    writeFile(system_ / "File.app", "12345");
    fs::create_directory_symlink(folder_ / "elsewhere/Seven.app", system_ / "Link.app");
    fs::create_directory_symlink(folder_ / "elsewhere", system_ / "Linked");
    fs::create_directory_symlink(user_, folder_ / "again");
    const auto applications = scanApplications(system_, user_);
    const auto names = namesOf(applications);
    ASSERT_EQ(names.size(), 4U);
    EXPECT_EQ(names.back(), "One.app");
    EXPECT_THAT(names, testing::UnorderedElementsAre("One.app", "Two.app", "Two.app", "Three.bundle"));
    for (const auto& application : applications) {
        EXPECT_TRUE(application->ppbChecked() && application->ppbDeletable());
    }
    EXPECT_THAT(scanApplications(std::nullopt), testing::IsEmpty());
    EXPECT_THAT(scanApplications(folder_ / "missing", system_ / "File.app"), testing::IsEmpty());
    EXPECT_THAT(namesOf(scanApplications(system_ / "Linked", user_)), testing::ElementsAre("Seven.app", "One.app"));
    EXPECT_THAT(namesOf(scanApplications(user_, folder_ / "again")), testing::ElementsAre("One.app")) << "listed once";
}

TEST_F(ApplicationsScan, TakesEveryLocalizationFolderOfAnApplicationAndMeasuresIt) {
    const auto bundle = system_ / "Some.app";
    const auto shared = bundle / "Contents/Resources";
    makeLocalizations(shared, {"en.lproj", "English.LPROJ", "Foo Bar.XLPROJ", "pt_PT.lproj", "Base.lproj", "base.lproj",
                               "BASE.Lproj", ".hidden.lproj", ".hidden/fr.lproj", "lproj", "xx.lproj.bak", "xxlproj"});
    makeLocalizations(bundle, {"ja.lproj", "Contents/Frameworks/X.framework/Versions/A/Resources/it.lproj",
                               "Contents/Helpers/Helper.app/Contents/Resources/es.lproj",
                               "Contents/Resources/en.lproj/nl.lproj", "Contents/Resources/Base.lproj/pl.lproj"});
    fs::create_directory_symlink("A", bundle / "Contents/Frameworks/X.framework/Versions/Current");
    fs::create_directory_symlink("en.lproj", shared / "ru.lproj");
    fs::create_directories(shared / "sv.lproj");
    writeFile(shared / "fi.lproj", "a file");
    const auto before = fingerprint(folder_.path());
    const auto applications = scanApplications(system_);
    ASSERT_EQ(applications.size(), 1);
    EXPECT_THAT(
        localizationsOf(*applications[0]),
        testing::UnorderedElementsAre(
            "ja.lproj ja 5", "Contents/Resources/en.lproj en 10", "Contents/Resources/en.lproj/nl.lproj nl 5",
            "Contents/Resources/Base.lproj/pl.lproj pl 5", "Contents/Resources/English.LPROJ en 5",
            "Contents/Resources/Foo Bar.XLPROJ Foo Bar 5", "Contents/Resources/pt_PT.lproj pt-PT 5",
            "Contents/Resources/sv.lproj sv 0", "Contents/Frameworks/X.framework/Versions/A/Resources/it.lproj it 5",
            "Contents/Helpers/Helper.app/Contents/Resources/es.lproj es 5"));
    EXPECT_EQ(fingerprint(folder_.path()), before);
}

TEST_F(ApplicationsScan, PassesOverTheSystemsOwnApplicationsByTheirExactIdentifiers) {
    const std::pair<const char*, bool> examples[] = {
        {"com.apple.Safari", false}, {"com.apple.Siri", false},   {"com.apple.siri.launcher", false},
        {"com.apple.Unknown", true}, {"com.apple.safari", true},  {"com.apple.Safari2", true},
        {"com.apple", true},         {"net.java.openjdk", true},  {"org.cups", true},
        {"com.vendor.editor", true}, {" com.apple.Safari", true}, {"", true},
    };
    make(system_, {Kind::listed});
    for (const auto& [identifier, scanned] : examples) {
        writeFile(system_ / "0.app/Contents/Info.plist", infoOf(identifier));
        EXPECT_EQ(scanApplications(system_).size(), scanned ? 1 : 0) << identifier;
    }
    writeFile(system_ / "0.app/Contents/Info.plist", "damaged");
    EXPECT_EQ(scanApplications(system_).size(), 1);
}

TEST_F(ApplicationsScan, PassesOverAnApplicationInQuarantineUntilTheUserHasClearedIt) {
    make(system_, {Kind::listed});
    const std::pair<std::string, int> examples[] = {{"0083;5f3b;Browser;", 0}, {"00c3;5f3b;Browser;", 1}};
    for (const auto& [mark, listed] : examples) {
        const auto bundle = system_ / "0.app";
        if (::lsetxattr(bundle.c_str(), "user.com.apple.quarantine", mark.data(), mark.size(), 0) != 0) {
            GTEST_SKIP() << "no extended attributes here: " << std::generic_category().message(errno);
        }
        EXPECT_EQ(scanApplications(system_).size(), listed);
    }
}

TEST_F(ApplicationsScan, PostsThePackagesAsItCountsThemAndThenWhatItFinds) {
    using enum Kind;
    const struct {
        std::vector<Kind> ofSystem, ofUser;
        std::vector<std::string> posts;
    } examples[] = {
        {{}, {}, {}},
        {{listed},
         {bare, bare},
         {"all 0 of 1, 0%", "all 0 of 2, 0%", "all 0 of 3, 0%", "all 1 of 3, 33%", "delta 0 of 3, 66%",
          "delta 0 of 3, 100%"}},
        {{guarded},
         {listed, listed, listed},
         {"all 0 of 1, 0%", "all 0 of 2, 0%", "all 0 of 3, 0%", "all 0 of 4, 0%", "all 1 of 4, 50%",
          "delta 1 of 4, 75%", "delta 1 of 4, 100%"}},
        {{bare}, {guarded}, {"all 0 of 1, 0%", "all 0 of 2, 0%", "all 0 of 2, 50%"}},
    };
    for (const auto& example : examples) {
        removeTree(system_);
        removeTree(user_);
        make(system_, example.ofSystem);
        make(user_, example.ofUser);
        std::vector<std::string> posts;
        (void)scanApplications(system_, user_, [&](auto&, auto& progress) { posts.push_back(described(progress)); });
        EXPECT_EQ(posts, example.posts);
    }
}

TEST_F(ApplicationsScan, FinishesWithWhatItHasAndPostsNoMoreWhenItIsCancelledOrFails) {
    make(system_, {Kind::listed, Kind::listed, Kind::listed});
    make(user_, {Kind::listed});
    const std::pair<int, int> examples[] = {{1, 0}, {2, 0}, {4, 0}, {5, 1}, {6, 2}, {8, 4}};
    for (const auto& [until, listed] : examples) {
        for (const bool fails : {false, true}) {
            int posts = 0;
            const auto applications = scanApplications(system_, user_, [&, last = until](auto& operation, auto&) {
                if (++posts == last && fails) {
                    throw std::runtime_error("a failure");
                }
                if (posts == last) {
                    operation.cancel();
                }
            });
            EXPECT_EQ(applications.size(), listed) << until << fails;
            EXPECT_EQ(posts, until) << fails;
        }
    }
}

// Cancelled at any time, and not only where it posts.
TEST_F(ApplicationsScan, ListsOnlyWholeApplicationsWheneverItIsCancelled) {
    constexpr int localizations = 60;
    constexpr int applications = 5;
    for (int number = 0; number < applications * localizations; ++number) {
        const auto bundle = system_ / (std::to_string(number % applications) + ".app");
        writeFile(bundle / (std::to_string(number) + ".lproj") / "inner/file", "12345");
    }
    const auto start = std::chrono::steady_clock::now();
    ASSERT_EQ(scanApplications(system_).size(), applications);
    const auto whole = std::chrono::steady_clock::now() - start;
    int cutShort = 0;
    for (int round = 0; round < 500 && cutShort < 10; ++round) {
        const auto operation = std::make_shared<SAOperation>(system_, std::nullopt);
        const HeardNotifications finished = {resources.scanFinished};
        const std::jthread canceller([&operation, pause = whole * (round % 100) / 100] {
            std::this_thread::sleep_for(pause);
            operation->cancel();
        });
        runToEnd(operation);
        const auto listed = listedIn(finished);
        for (const auto& application : listed) {
            const auto& found = application->pLocalizations();
            const bool isWhole =
                std::all_of(found.begin(), found.end(), [](auto& item) { return item->nlocSize == 5; });
            ASSERT_TRUE(found.size() == localizations && isWhole) << application->pAppName();
        }
        cutShort += !listed.isEmpty() && listed.size() < applications ? 1 : 0;
    }
    EXPECT_GT(cutShort, 0) << "no scan was stopped under way";
}

TEST_F(ApplicationsScan, FindsWhatLiesOnAVolumeThatIsMountedAsTheFolderAndNoPackageThatIsOne) {
    fs::create_directories(system_);
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        if (const auto reason = keepMountsPrivate(); !reason.empty()) {
            return cannotTry(reason);
        }
        for (const auto& point : {system_, system_ / "0.app"}) {
            if (::mount("none", point.c_str(), "tmpfs", 0, "size=1m") != 0) {
                return cannotTry("mount: " + std::generic_category().message(errno));
            }
            make(system_, {Kind::listed, Kind::listed});
        }
        return namesOf(scanApplications(system_)) == std::vector<std::string>{"1.app"} ? "" : "another list";
    });
}

TEST_F(ApplicationsScan, PassesOverWhatGoesOrChangesAfterItWasCounted) {
    make(system_, {Kind::listed, Kind::listed, Kind::listed, Kind::listed});
    make(folder_ / "elsewhere", {Kind::listed});
    const auto applications = scanApplications(system_, user_, [&](SAOperation& operation, const Notification&) {
        if (operation.nTopLevelItemsCount() == 4 && fs::remove_all(system_ / "1.app") != 0) {
            fs::remove_all(system_ / "2.app");
            fs::create_directory_symlink(folder_ / "elsewhere/0.app", system_ / "2.app");
            fs::remove_all(system_ / "3.app");
            writeFile(system_ / "3.app", "a file");
        }
    });
    EXPECT_THAT(namesOf(applications), testing::ElementsAre("0.app"));
    EXPECT_THAT(scanApplications(system_, user_, [&](auto&, auto&) { fs::remove_all(system_); }), testing::IsEmpty());
}

}  // namespace brimvault::tests
