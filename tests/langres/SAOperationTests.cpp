#include "langres/SAOperation.h"

#include <gmock/gmock.h>
#include <sys/mount.h>
#include <sys/xattr.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <random>
#include <system_error>
#include <thread>

#include "engine/model/FileManager.h"
#include "langres/ApplicationRuns.h"
#include "support/ChildProcess.h"
#include "support/FixtureTrees.h"
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

qint64 percentOf(const Notification& progress) {
    return engine::getNumberPropfromNotification(progress, engine::key::progressPercent).value_or(-1);
}

// "all 1 of 3, 33%": which array a progress held, with its length, the total and the per cents.
std::string described(const Notification& progress) {
    const bool whole = progress.userInfo.contains(resources.arrayKey);
    EXPECT_EQ(progress.userInfo.size(), 3);
    const auto applications = engine::getArrayPropfromNotification<ApplicationArray>(
        progress, whole ? resources.arrayKey : resources.deltaKey);
    const auto total = engine::getNumberPropfromNotification(progress, engine::key::totalCount);
    return (whole ? "all " : "delta ") + std::to_string(applications ? applications->size() : -1) + " of " +
           std::to_string(total.value_or(-1)) + ", " + std::to_string(percentOf(progress)) + "%";
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
    const auto applications = scanApplications(system_, user_);
    const auto names = namesOf(applications);
    ASSERT_EQ(names.size(), 4U);
    EXPECT_EQ(names.back(), "One.app");
    EXPECT_THAT(std::vector(names.begin(), names.end() - 1),
                testing::UnorderedElementsAre("Two.app", "Two.app", "Three.bundle"));
    for (const auto& application : applications) {
        EXPECT_TRUE(application->ppbChecked());
        EXPECT_TRUE(application->ppbDeletable());
        EXPECT_EQ(application->ppdisplayName(), engine::FileManager::displayNameAtPath(application->pAppName()));
    }
    EXPECT_THAT(scanApplications(std::nullopt), testing::IsEmpty());
    EXPECT_THAT(scanApplications(folder_ / "missing", system_ / "File.app"), testing::IsEmpty());
    EXPECT_THAT(namesOf(scanApplications(system_ / "Linked", user_)), testing::ElementsAre("Seven.app", "One.app"));
    fs::create_directory_symlink(user_, folder_ / "again");
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
    for (const auto& [identifier, scanned] : examples) {
        removeTree(system_);
        make(system_, {Kind::listed});
        writeFile(system_ / "0.app/Contents/Info.plist", infoOf(identifier));
        EXPECT_EQ(scanApplications(system_).size(), scanned ? 1 : 0) << identifier;
    }
    writeFile(system_ / "0.app/Contents/Info.plist", "damaged");
    EXPECT_EQ(scanApplications(system_).size(), 1);
}

TEST_F(ApplicationsScan, PassesOverAnApplicationInQuarantineUntilTheUserHasClearedIt) {
    make(system_, {Kind::listed});
    const auto mark = [&](const std::string& value) {
        const auto bundle = system_ / "0.app";
        return ::lsetxattr(bundle.c_str(), "user.com.apple.quarantine", value.data(), value.size(), 0) == 0;
    };
    if (!mark("0083;5f3b;Browser;")) {
        GTEST_SKIP() << "no extended attributes here: " << std::generic_category().message(errno);
    }
    EXPECT_THAT(scanApplications(system_), testing::IsEmpty());
    ASSERT_TRUE(mark("00c3;5f3b;Browser;"));
    EXPECT_EQ(scanApplications(system_).size(), 1);
}

TEST_F(ApplicationsScan, PostsThePackagesAsItCountsThemAndThenWhatItFinds) {
    struct Example {
        std::vector<Kind> ofSystem;
        std::vector<Kind> ofUser;
        std::vector<std::string> posts;
    };
    using enum Kind;
    const Example examples[] = {
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
        (void)scanApplications(system_, user_,
                               [&](auto&, const Notification& progress) { posts.push_back(described(progress)); });
        EXPECT_EQ(posts, example.posts);
    }
}

TEST_F(ApplicationsScan, FinishesWithWhatItHasAndPostsNoMoreWhenItIsCancelled) {
    make(system_, {Kind::listed, Kind::listed, Kind::listed});
    make(user_, {Kind::listed});
    const std::pair<int, int> examples[] = {{1, 0}, {2, 0}, {4, 0}, {5, 1}, {6, 2}, {8, 4}};
    for (const auto& [postsUntilCancel, listed] : examples) {
        int posts = 0;
        const auto applications =
            scanApplications(system_, user_, [&, until = postsUntilCancel](auto& operation, auto&) {
                if (++posts == until) {
                    operation.cancel();
                }
            });
        EXPECT_EQ(applications.size(), listed);
        EXPECT_EQ(posts, postsUntilCancel);
        posts = 0;
        EXPECT_EQ(scanApplications(system_, user_,
                                   [&, until = postsUntilCancel](auto&, auto&) {
                                       if (++posts == until) {
                                           throw std::runtime_error("a failure");
                                       }
                                   })
                      .size(),
                  listed)
            << "it ends in the same way when it fails";
    }
}

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
    std::mt19937 random(1811);
    int cutShort = 0;
    for (int round = 0; round < 500 && cutShort < 10; ++round) {
        const auto operation = std::make_shared<SAOperation>(system_, std::nullopt);
        const HeardNotifications finished = {resources.scanFinished};
        std::thread canceller([&, pause = whole * (random() % 100) / 100] {
            std::this_thread::sleep_for(pause);
            operation->cancel();
        });
        runToEnd(operation);
        canceller.join();
        const auto listed = engine::getArrayPropfromNotification<ApplicationArray>(
                                finished.last(resources.scanFinished), resources.arrayKey)
                                .value_or(ApplicationArray());
        for (const auto& application : listed) {
            ASSERT_EQ(application->pLocalizations().size(), localizations);
            for (const auto& item : application->pLocalizations()) {
                ASSERT_EQ(item->nlocSize, 5U);
            }
        }
        cutShort += !listed.isEmpty() && listed.size() < applications ? 1 : 0;
    }
    EXPECT_GT(cutShort, 0) << "no scan was stopped under way";
}

TEST_F(ApplicationsScan, FollowsNoLinkHoweverItLoops) {
    make(system_, {Kind::listed, Kind::listed, Kind::listed});
    makeLoops(system_ / "0.app/Contents/Resources/loops");
    fs::create_directory_symlink("../Resources", system_ / "0.app/Contents/Resources/fr.lproj");
    const std::pair<const char*, const char*> targets[] = {{"1.app", ".."}, {"2.app", "Contents"}};
    for (const auto& [bundle, target] : targets) {
        fs::rename(system_ / bundle / "Contents", system_ / bundle / "Real");
        fs::create_symlink(target, system_ / bundle / "Contents");
    }
    const auto applications = scanApplications(system_);
    EXPECT_EQ(applications.size(), 3);
    for (const auto& application : applications) {
        EXPECT_EQ(application->pLocalizations().size(), 2) << application->pAppName();
    }
}

TEST_F(ApplicationsScan, CountsWhatItMayNotReadAsEmpty) {
    make(system_, {Kind::listed, Kind::listed, Kind::listed});
    fs::permissions(system_ / "0.app/Contents/Resources/de.lproj", fs::perms::none);
    fs::permissions(system_ / "1.app/Contents/Resources", fs::perms::none);
    fs::permissions(system_ / "2.app", fs::perms::none);
    giveToNobody(folder_.path());
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        becomeNobody();
        std::string found;
        for (const auto& application : scanApplications(system_)) {
            auto localizations = localizationsOf(*application);
            std::sort(localizations.begin(), localizations.end());
            found += application->pAppName().filename().native() + ": " + localizations[0] + ", " + localizations[1];
        }
        const std::string expected = "0.app: Contents/Resources/de.lproj de 0, Contents/Resources/en.lproj en 5";
        return found == expected ? "" : "listed " + found;
    });
}

TEST_F(ApplicationsScan, EndsWellWithTenThousandLocalizationsInHalfAsManyFolders) {
    constexpr int many = 5000;
    for (int number = 0; number < many; ++number) {
        fs::create_directories(system_ / "Some.app" / (std::to_string(number) + ".lproj/en.lproj"));
    }
    const auto applications = scanApplications(system_);
    ASSERT_EQ(applications.size(), 1);
    EXPECT_EQ(applications[0]->pLocalizations().size(), 2 * many);
    EXPECT_EQ(applications[0]->itemsToClean({QStringLiteral("de")}).size(), many - 1);
}

TEST_F(ApplicationsScan, FindsWhatLiesOnAVolumeThatIsMountedAsTheFolder) {
    fs::create_directories(system_);
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        if (const auto reason = keepMountsPrivate(); !reason.empty()) {
            return cannotTry(reason);
        }
        if (::mount("none", system_.c_str(), "tmpfs", 0, "size=1m") != 0) {
            return cannotTry("mount: " + std::generic_category().message(errno));
        }
        make(system_, {Kind::listed});
        return scanApplications(system_).size() == 1 ? "" : "nothing is listed";
    });
}

TEST_F(ApplicationsScan, PassesOverWhatGoesOrChangesAfterItWasCounted) {
    make(system_, {Kind::listed, Kind::listed, Kind::listed, Kind::listed});
    make(folder_ / "elsewhere", {Kind::listed});
    bool hasChanged = false;
    const auto applications = scanApplications(system_, user_, [&](SAOperation& operation, const Notification&) {
        if (hasChanged || operation.nTopLevelItemsCount() != 4) {
            return;
        }
        hasChanged = true;
        for (const char* name : {"1.app", "2.app", "3.app"}) {
            fs::remove_all(system_ / name);
            fs::create_directory_symlink(folder_ / "elsewhere/0.app", system_ / name);
        }
        fs::remove(system_ / "1.app");
    });
    ASSERT_EQ(applications.size(), 1);
    EXPECT_EQ(applications[0]->pAppName(), system_ / "0.app");
    EXPECT_THAT(scanApplications(system_, user_, [&](SAOperation&, const Notification&) { fs::remove_all(system_); }),
                testing::IsEmpty());
}

}  // namespace brimvault::tests
