#include <gmock/gmock.h>

#include <QProcess>
#include <algorithm>
#include <numeric>
#include <random>
#include <set>

#include "engine/model/DataMan.h"
#include "langres/ApplicationRuns.h"
#include "support/EventLoop.h"
#include "support/FixtureTrees.h"
#include "trial/TemporaryFolder.h"

// What the program counts for a list of languages, and what a clean then takes from the disk, of applications made at
// random and of real ones, compared with what is found in their folders by other means than the program's.

namespace brimvault::tests {

using namespace trial;

namespace fs = std::filesystem;

namespace {

const std::map<std::string, QString> identifierOfName = {
    {"en.lproj", QStringLiteral("en")},           {"English.lproj", QStringLiteral("en")},
    {"de.lproj", QStringLiteral("de")},           {"German.LPROJ", QStringLiteral("de")},
    {"fr.xlproj", QStringLiteral("fr")},          {"pt_PT.lproj", QStringLiteral("pt-PT")},
    {"pt-BR.lproj", QStringLiteral("pt")},        {"zh_CN.lproj", QStringLiteral("zh-Hans")},
    {"zh-Hant.lproj", QStringLiteral("zh-Hant")}, {"in\nvented.lproj", QStringLiteral("in\nvented")},
};

/// The identifiers of an application's localizations by the folder that holds them.
using Groups = std::map<fs::path, QStringList>;

Groups groupsOf(const fs::path& application) {
    Groups groups;
    for (auto entry = fs::recursive_directory_iterator(application); entry != fs::recursive_directory_iterator();
         ++entry) {
        const auto name = entry->path().filename().native();
        const auto known = identifierOfName.find(name);
        if (name.starts_with('.')) {
            entry.disable_recursion_pending();
        } else if (known != identifierOfName.end() && fs::is_directory(entry->symlink_status())) {
            groups[entry->path().parent_path()].append(known->second);
        }
    }
    return groups;
}

qsizetype countOf(const Groups& groups) {
    return std::accumulate(groups.begin(), groups.end(), qsizetype{0},
                           [](qsizetype sum, const auto& group) { return sum + group.second.size(); });
}

/// How many of them go: none that is needed, and never all of a folder.
qsizetype countToGo(const Groups& groups, const QStringList& needed) {
    qsizetype count = 0;
    for (const auto& [folder, group] : groups) {
        const auto unneeded =
            std::count_if(group.begin(), group.end(), [&](const auto& language) { return !needed.contains(language); });
        count += unneeded == group.size() ? unneeded - 1 : unneeded;
    }
    return count;
}

// Bytes of all that is no folder.
quint64 countedByDu(const fs::path& folder) {
    QProcess du;
    du.start(
        QStringLiteral("sh"),
        {QStringLiteral("-c"), QStringLiteral("find \"$1\" ! -type d -print0 | du -bc --files0-from=- | tail -n 1"),
         QStringLiteral("sh"), QString::fromStdString(folder.native())});
    EXPECT_TRUE(du.waitForFinished());
    return du.readAllStandardOutput().split('\t').first().toULongLong();
}

class RandomApplications : public testing::Test {
protected:
    int number(int most) { return std::uniform_int_distribution(0, most)(random_); }
    bool chance(int of) { return number(of - 1) == 0; }

    void growApplication(const fs::path& bundle) {
        growRandomly(random_, bundle / "Contents/MacOS", 0);
        for (const char* place : {".", "Contents/Resources", "X.framework/\xff\n", "Helper.app/Resources", ".hidden"}) {
            const int rarity = 1 + number(5);
            fs::create_directories(bundle / place);
            for (const auto& [name, identifier] : identifierOfName) {
                if (chance(rarity) && chance(8)) {
                    growRandomly(random_, bundle / place / name, 1);
                } else if (chance(rarity)) {
                    writeSparseFile(bundle / place / name / "strings", static_cast<std::uint64_t>(number(1'000'000)));
                } else if (chance(8)) {
                    writeFile(bundle / place / name, "a file of this name");
                } else if (chance(8)) {
                    fs::create_directory_symlink(chance(2) ? "." : "/", bundle / place / name);
                }
            }
            writeFile(bundle / place / "Base.lproj/strings", "shared");
        }
    }

    // Applications in both folders, with what they are to be listed by.
    std::map<fs::path, Groups> growApplications() {
        std::map<fs::path, Groups> listed;
        for (const auto& folder : {system_, user_}) {
            removeTree(folder);
            for (int count = number(7); count > 0; --count) {
                const auto bundle = folder / (chance(3) ? "Utilities/More" : "") / (std::to_string(count) + ".app");
                growApplication(bundle);
                auto groups = groupsOf(bundle);
                if (countOf(groups) > 1) {
                    listed[bundle] = std::move(groups);
                }
            }
        }
        return listed;
    }

    QStringList languages() {
        QStringList chosen = {QStringLiteral("ja")};
        const int rarity = 1 + number(5);
        for (const auto& [name, identifier] : identifierOfName) {
            if (chance(rarity)) {
                chosen.append(identifier);
            }
        }
        return chosen;
    }

    static void expectCounted(const engine::DataMan& model, const std::map<fs::path, Groups>& found,
                              const QStringList& needed) {
        for (const auto& application : model.getAppsArray()) {
            const auto items = application->itemsToClean(needed);
            std::uint64_t sum = 0;
            std::set<QString> identifiers;
            for (const auto& item : items) {
                sum += item->nlocSize;
                const auto& language = identifierOfName.at(item->plocPath.filename());
                EXPECT_FALSE(needed.contains(language)) << item->plocPath;
                identifiers.insert(language);
            }
            EXPECT_EQ(items.size(), countToGo(found.at(application->pAppName()), needed));
            EXPECT_EQ(application->getSpace2Save(), sum);
            EXPECT_EQ(application->cleanableLocsCount(), identifiers.size());
        }
    }

    // Cleans, and looks at everything that is left; answers how many localizations went.
    std::size_t expectCleaned(engine::DataMan& model, const std::map<fs::path, Groups>& found,
                              const QStringList& needed) {
        std::vector<fs::path> toGo;
        for (const auto& application : model.getAppsArray()) {
            for (const auto& item : application->itemsToClean(needed)) {
                toGo.push_back(item->plocPath.lexically_relative(folder_.path()));
            }
        }
        const auto left = fingerprint(folder_.path(), toGo);
        const auto sizeBefore = sizeOf(folder_.path());
        const auto counted = model.getSize2CleanAppsSel();
        const auto result = runClean(makeClean(model.getAppsArray(), needed));
        runPending();
        EXPECT_TRUE(result.notCleaned.empty());
        EXPECT_EQ(fingerprint(folder_.path()), left);
        EXPECT_EQ(sizeBefore - sizeOf(folder_.path()), counted);
        EXPECT_EQ(model.getSize2CleanAppsSel(), 0U);
        for (const auto& application : model.getAppsArray()) {
            const auto after = groupsOf(application->pAppName());
            EXPECT_EQ(after.size(), found.at(application->pAppName()).size()) << "a folder was emptied";
            EXPECT_EQ(countOf(after), application->pLocalizations().size());
        }
        return toGo.size();
    }

    std::mt19937 random_{1848};
    TemporaryFolder folder_;
    const fs::path system_ = folder_ / "Applications";
    const fs::path user_ = folder_ / "home/Applications";
};

}  // namespace

TEST_F(RandomApplications, LoseWhatIsCountedAndNothingElseAndNeverAllOfAFolder) {
    std::size_t applications = 0;
    std::size_t gone = 0;
    for (int round = 0; round < 30; ++round) {
        SCOPED_TRACE("in round " + std::to_string(round));
        const auto found = growApplications();
        engine::DataMan model;
        (void)scanApplications(system_, user_);
        runPending();
        ASSERT_EQ(static_cast<std::size_t>(model.getAppsCount()), found.size());
        QStringList needed;
        for (int list = 0; list < 80; ++list) {
            needed = languages();
            model.updateResSizesForApps(needed);
            expectCounted(model, found, needed);
        }
        for (const auto& application : model.getAppsArray()) {
            application->setPpbChecked(!chance(5));
        }
        gone += expectCleaned(model, found, needed);
        applications += found.size();
    }
    EXPECT_GT(applications, 150U);
    EXPECT_GT(gone, 500U);
}

// Bundles of another desktop, which Debian packages with localizations inside.
TEST(RealApplications, LoseTheLanguagesThatAreNotKeptAndTheSizesAreThoseOfDu) {
    const fs::path installed = "/usr/share/GNUstep";
    const TemporaryFolder folder;
    for (const char* name : {"AddressManager.app", "Cynthiune.app", "Terminal.app"}) {
        if (!fs::exists(installed / name)) {
            GTEST_SKIP() << "there is no " << (installed / name).native();
        }
        fs::copy(installed / name, folder / name, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    }
    std::set<fs::path> localizations;
    std::vector<fs::path> toGo;
    for (const auto& entry : fs::recursive_directory_iterator(folder.path())) {
        if (entry.path().extension() == ".lproj") {
            localizations.insert(entry.path());
            if (const auto name = entry.path().stem(); name != "English" && name != "German") {
                toGo.push_back(entry.path().lexically_relative(folder.path()));
            }
        }
    }
    const auto left = fingerprint(folder.path(), toGo);

    const auto applications = scanApplications(folder.path());
    ASSERT_EQ(applications.size(), 3);
    for (const auto& application : applications) {
        application->setPpbChecked(true);
        for (const auto& item : application->pLocalizations()) {
            EXPECT_EQ(item->nlocSize, countedByDu(item->plocPath)) << item->plocPath;
            EXPECT_EQ(localizations.erase(item->plocPath), 1U) << item->plocPath;
        }
    }
    EXPECT_THAT(localizations, testing::IsEmpty());
    (void)runClean(makeClean(applications, {QStringLiteral("en"), QStringLiteral("de")}));
    EXPECT_EQ(fingerprint(folder.path()), left);
}

}  // namespace brimvault::tests
