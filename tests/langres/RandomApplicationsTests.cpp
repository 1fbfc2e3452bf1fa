#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <random>
#include <set>
#include <thread>

#include "engine/model/DataMan.h"
#include "langres/ApplicationRuns.h"
#include "support/ChildProcess.h"
#include "support/EventLoop.h"
#include "support/FixtureTrees.h"
#include "trial/TemporaryFolder.h"

// Applications made at random: what the program counts for a list of languages, and what a clean then takes from the
// disk, against a model that looks at the folders by other means than the program's.

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

struct Localization {
    fs::path path;
    QString identifier;
    std::uint64_t size;
};
/// The localizations of an application by the folder that holds them.
using Groups = std::map<fs::path, std::vector<Localization>>;

Groups groupsOf(const fs::path& application) {
    Groups groups;
    for (auto entry = fs::recursive_directory_iterator(application); entry != fs::recursive_directory_iterator();
         ++entry) {
        const auto name = entry->path().filename().native();
        const auto known = identifierOfName.find(name);
        if (name.starts_with('.')) {
            entry.disable_recursion_pending();
        } else if (known != identifierOfName.end() && fs::is_directory(entry->symlink_status())) {
            groups[entry->path().parent_path()].push_back({entry->path(), known->second, sizeOf(entry->path())});
        }
    }
    return groups;
}

std::size_t countOf(const Groups& groups) {
    std::size_t count = 0;
    for (const auto& [folder, group] : groups) {
        count += group.size();
    }
    return count;
}

/// What cleaning takes of an application. Where all of a folder could go any one of them may be the one that stays, so
/// the bytes lie between two sums.
struct Freed {
    std::size_t count = 0;
    std::uint64_t least = 0;
    std::uint64_t most = 0;
};

Freed freedBy(const Groups& groups, const QStringList& needed) {
    Freed freed;
    for (const auto& [folder, group] : groups) {
        std::vector<std::uint64_t> sizes;
        for (const auto& localization : group) {
            if (!needed.contains(localization.identifier)) {
                sizes.push_back(localization.size);
                freed.least += localization.size;
                freed.most += localization.size;
            }
        }
        freed.count += sizes.size();
        if (sizes.size() == group.size()) {
            freed.count -= 1;
            freed.least -= *std::max_element(sizes.begin(), sizes.end());
            freed.most -= *std::min_element(sizes.begin(), sizes.end());
        }
    }
    return freed;
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
            const auto freed = freedBy(found.at(application->pAppName()), needed);
            const auto items = application->itemsToClean(needed);
            std::uint64_t sum = 0;
            std::set<QString> identifiers;
            for (const auto& item : items) {
                sum += item->nlocSize;
                identifiers.insert(item->plocNameId);
            }
            EXPECT_EQ(static_cast<std::size_t>(items.size()), freed.count);
            EXPECT_EQ(application->getSpace2Save(), sum);
            EXPECT_TRUE(sum >= freed.least && sum <= freed.most);
            EXPECT_EQ(application->cleanableLocsCount(), identifiers.size());
        }
    }

    // Cleans, and looks at everything that is left; answers how many localizations went.
    std::size_t expectCleaned(engine::DataMan& model, const std::map<fs::path, Groups>& found,
                              const QStringList& needed) {
        auto left = fingerprint(folder_.path());
        const auto sizeBefore = sizeOf(folder_.path());
        const auto counted = model.getSize2CleanAppsSel();
        const auto result = runClean(makeClean(model.getAppsArray(), needed));
        runPending();
        EXPECT_TRUE(result.notCleaned.empty());
        EXPECT_EQ(sizeBefore - sizeOf(folder_.path()), counted);
        EXPECT_EQ(model.getSize2CleanAppsSel(), 0U);
        std::size_t gone = 0;
        for (const auto& application : model.getAppsArray()) {
            const auto& before = found.at(application->pAppName());
            const auto after = groupsOf(application->pAppName());
            const auto count = application->ppbChecked() ? freedBy(before, needed).count : 0;
            EXPECT_EQ(after.size(), before.size()) << "a folder was emptied in " << application->pAppName();
            EXPECT_EQ(countOf(after) + count, countOf(before));
            EXPECT_EQ(countOf(after), static_cast<std::size_t>(application->pLocalizations().size()));
            for (const auto& [folder, group] : before) {
                for (const auto& localization : group) {
                    if (!fs::exists(fs::symlink_status(localization.path))) {
                        ++gone;
                        EXPECT_FALSE(needed.contains(localization.identifier)) << localization.path;
                        const auto name = localization.path.lexically_relative(folder_.path()).native();
                        std::erase_if(left, [&](const auto& entry) {
                            return entry.first == name || entry.first.native().starts_with(name + "/");
                        });
                    }
                }
            }
        }
        EXPECT_EQ(fingerprint(folder_.path()), left);
        return gone;
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
        for (const auto& application : model.getAppsArray()) {
            application->setPpbChecked(true);
        }
        (void)runClean(makeClean(model.getAppsArray(), needed));
        for (const auto& application : scanApplications(system_, user_)) {
            application->recalcKeepSpaceForLocales(needed);
            EXPECT_EQ(application->getSpace2Save(), 0U);
            EXPECT_TRUE(application->itemsToClean(needed).isEmpty());
        }
        applications += found.size();
    }
    EXPECT_GT(applications, 150U);
    EXPECT_GT(gone, 500U);
}

TEST_F(RandomApplications, KeepAWholeLocalizationInEveryFolderWhenTheProcessThatCleansIsKilled) {
    constexpr int filesOfEach = 20;
    const QStringList needed = {QStringLiteral("en")};
    int underWay = 0;
    for (int round = 0; round < 12; ++round) {
        SCOPED_TRACE("in round " + std::to_string(round));
        removeTree(system_);
        std::vector<fs::path> toGo;
        for (const char* place : {"A.app/Contents/Resources", "A.app/PlugIns", "B.app/Contents/Resources"}) {
            for (const char* name : {"de.lproj", "fr.xlproj", "pt_PT.lproj", "zh-Hant.lproj"}) {
                toGo.push_back(system_ / place / name);
                makeWide(toGo.back(), filesOfEach);
            }
            if (chance(2)) {
                makeWide(system_ / place / "en.lproj", filesOfEach);
            }
        }
        const auto before = groupsOf(system_).size();
        const auto awaited = toGo[static_cast<std::size_t>(number(static_cast<int>(toGo.size()) - 1))] /
                             std::to_string(number(filesOfEach - 1));
        (void)inChildProcess([&]() -> std::string {
            std::thread([&] {
                while (::access(awaited.c_str(), F_OK) == 0) {
                }
                ::kill(::getpid(), SIGKILL);
            }).detach();
            runToEnd(makeClean(scanApplications(system_), needed));
            return {};
        });
        const auto countWhole = [&](const std::vector<Localization>& group) {
            return std::count_if(group.begin(), group.end(), [](const auto& localization) {
                return std::distance(fs::directory_iterator(localization.path), fs::directory_iterator()) ==
                       filesOfEach;
            });
        };
        const auto left = groupsOf(system_);
        underWay += countOf(left) > before ? 1 : 0;
        EXPECT_EQ(left.size(), before);
        for (const auto& [folder, group] : left) {
            EXPECT_GE(countWhole(group), 1) << folder;
        }
        (void)runClean(makeClean(scanApplications(system_), needed));
        const auto cleaned = groupsOf(system_);
        EXPECT_EQ(cleaned.size(), before);
        for (const auto& [folder, group] : cleaned) {
            EXPECT_EQ(group.size(), 1U) << folder;
            EXPECT_EQ(countWhole(group), 1) << folder;
        }
    }
    EXPECT_GT(underWay, 0);
}

}  // namespace brimvault::tests
