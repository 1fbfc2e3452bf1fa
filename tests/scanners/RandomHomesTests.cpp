#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <random>

#include "engine/operations/FCutter.h"
#include "scanners/SDwnOperation.h"
#include "scanners/SLogsOperation.h"
#include "scanners/STrshOperation.h"
#include "support/FixtureTrees.h"
#include "support/ScanRun.h"
#include "support/SubstituteHome.h"
#include "trial/TemporaryFolder.h"

// Logs, Downloads and Trash over homes made at random: what a scan lists against a listing by the rules, and what a
// clean of some of it leaves against what is then to be left.

namespace brimvault::tests {

using namespace trial;

using engine::ItemArray;
namespace fs = std::filesystem;

namespace {

/// Where an item lies to name and size.
using Listing = std::map<fs::path, std::pair<fs::path, std::uint64_t>>;

bool isHidden(const fs::path& name) { return name.native().starts_with('.'); }

bool isRealFolder(const fs::path& folder) {
    return fs::is_directory(fs::symlink_status(folder)) && fs::canonical(folder) == folder;
}

std::vector<fs::path> visibleChildren(const fs::path& folder) {
    std::vector<fs::path> children;
    if (isRealFolder(folder)) {
        for (const auto& entry : fs::directory_iterator(folder)) {
            if (!isHidden(entry.path().filename())) {
                children.push_back(entry.path());
            }
        }
    }
    return children;
}

bool liesIn(const fs::path& inner, const fs::path& folder) { return inner.native().starts_with(folder.native() + "/"); }

class RandomHomes : public testing::Test {
protected:
    void makeLogs() {
        const auto library = home_ / "Library";
        for (const auto& source : logFolders()) {
            growRandomly(random_, source, 2);
            for (const char* name :
                 {"CrashReporter", "Ubiquity", "talagent.log", "talagent.log.3", "talagent", "Ubiquity.log"}) {
                if (chance(2)) {
                    writeFile(source / name / "file", "12345");
                }
            }
        }
        growRandomly(random_, library / "Containers", 1);  // files of one name and of two, links, folders without logs
        for (int number = 0; number < 4; ++number) {
            const auto container = library / "Containers" / ("app" + std::to_string(number));
            if (chance(3)) {
                writeFile(folder_ / "elsewhere/Library/Logs/file", "12345");
                fs::create_directories(container);
                fs::create_directory_symlink(folder_ / "elsewhere", container / "Data");
            } else {
                growRandomly(random_, container / "Data/Library/Logs", 2);
            }
        }
    }

    void makeTrash() {
        growRandomly(random_, home_ / ".Trash", 2);
        for (const auto& trash : trashFolders()) {
            growRandomly(random_, trash / "files", 2);
            for (const auto& entry : fs::directory_iterator(trash / "files")) {
                const auto name = entry.path().filename().native();
                if (name.size() < 200) {  // a record's name is longer
                    writeFile(trash / "info" / (name + ".trashinfo"), "[Trash Info]\nPath=/x\n");
                }
            }
        }
        for (const auto& volume : volumes_) {
            fs::permissions(volume / ".Trash", fs::perms::sticky_bit, fs::perm_options::add);
        }
        writeMountTable(root_, volumes_);
    }

    [[nodiscard]] std::vector<fs::path> logFolders() const {
        return {home_ / "Library/Logs", home_ / "Library/Application Support/CrashReporter", root_ / "Library/Logs"};
    }
    [[nodiscard]] std::vector<fs::path> trashFolders() const {
        const auto user = std::to_string(::getuid());
        std::vector<fs::path> folders = {home_ / ".local/share/Trash"};
        for (const auto& volume : volumes_) {
            folders.push_back(volume / ".Trash" / user);
            folders.push_back(volume / (".Trash-" + user));
        }
        return folders;
    }

    // Counts what is to be counted and not listed as well.
    [[nodiscard]] Listing expectedLogs(qint64& count) const {
        Listing listing;
        const auto add = [&](const fs::path& path, const fs::path& name, std::uint64_t size) {
            listing[path] = {name, size};
        };
        const auto sources = logFolders();
        for (const auto& source : sources) {
            for (const auto& file : visibleChildren(source)) {
                const auto name = file.filename();
                ++count;
                if (source != sources[0] ||
                    (name != "CrashReporter" && name != "Ubiquity" && name.native().rfind("talagent.log", 0) != 0)) {
                    add(file, name, sizeOf(file));
                }
            }
        }
        for (const auto& container : visibleChildren(home_ / "Library/Containers")) {
            const auto logs = container / "Data/Library/Logs";
            for (const auto& file : visibleChildren(logs)) {
                ++count;
                add(file, file.filename(), sizeOf(file));
            }
            const auto kind = fs::symlink_status(container);
            if (fs::is_directory(kind) || fs::is_symlink(kind) || fs::hard_link_count(container) == 1) {
                ++count;
                add(logs, container.filename(), isRealFolder(logs) ? sizeOf(logs) : 0);
            }
        }
        return listing;
    }

    [[nodiscard]] Listing expectedTrash(qint64& count, bool hiddenToo) const {
        Listing listing;
        auto folders = trashFolders();
        std::transform(folders.begin(), folders.end(), folders.begin(),
                       [](const auto& trash) { return trash / "files"; });
        folders.push_back(home_ / ".Trash");
        for (const auto& folder : folders) {
            for (const auto& entry : fs::directory_iterator(folder)) {
                ++count;
                const auto name = entry.path().filename();
                if (hiddenToo || !isHidden(name)) {
                    listing[entry.path()] = {name, sizeOf(entry.path())};
                }
            }
        }
        return listing;
    }

    static Listing listed(const ItemArray& items, bool ticked, const fs::path& folderOfNames = {}) {
        Listing listing;
        for (const auto& item : items) {
            EXPECT_TRUE(item->ppbDeletable());
            EXPECT_EQ(item->ppbChecked(), ticked);
            EXPECT_EQ(item->pfpath().empty(), !folderOfNames.empty());
            const auto path = item->pfpath().empty() ? folderOfNames / item->pfname() : item->pfpath();
            EXPECT_TRUE(listing.insert({path, {item->pfname(), item->pfSize()}}).second) << path;
        }
        return listing;
    }

    // Cleans a part of the items, chosen at random, and looks at everything that is left.
    void expectToCleanWhatIsTicked(engine::Section section, const ItemArray& items, const fs::path& folderOfNames) {
        std::vector<fs::path> spared;
        for (const auto& item : items) {
            item->setPpbChecked(chance(2));
            if (!item->ppbChecked()) {
                spared.push_back(item->pfpath());
            }
        }
        std::vector<fs::path> toGo;
        for (const auto& item : items) {
            const auto path = item->pfpath().empty() ? folderOfNames / item->pfname() : item->pfpath();
            const bool holdsSpared =
                !item->pfpath().empty() &&
                std::any_of(spared.begin(), spared.end(), [&](const fs::path& other) { return liesIn(other, path); });
            if (item->ppbChecked() && item->pfSize() != 0 && !holdsSpared) {
                toGo.push_back(path);
                if (path.parent_path().filename() == "files") {
                    toGo.push_back(path.parent_path().parent_path() / "info" /
                                   (path.filename().native() + ".trashinfo"));
                }
            }
        }
        auto left = fingerprint(folder_.path());
        std::erase_if(left, [&](const auto& entry) {
            const auto path = folder_ / entry.first;
            return std::any_of(toGo.begin(), toGo.end(),
                               [&](const fs::path& gone) { return path == gone || liesIn(path, gone); });
        });
        const auto clean = engine::CleanTable::fileSections().files[section](items);
        engine::OperationQueue queue;
        queue.addOperation(clean);
        clean->waitUntilFinished();
        EXPECT_EQ(fingerprint(folder_.path()), left);
    }

    bool chance(int of) { return std::uniform_int_distribution(1, of)(random_) == 1; }

    std::mt19937 random_{815};
    TemporaryFolder folder_;
    const fs::path home_ = folder_ / "home";
    const fs::path root_ = folder_ / "root";
    const std::vector<fs::path> volumes_ = {folder_ / "volume", folder_ / "odd \\ \n\t*#\xff\\040"};
};

}  // namespace

TEST_F(RandomHomes, LogsAreListedAndCleanedByTheRules) {
    std::size_t items = 0;
    for (int round = 0; round < 60; ++round) {
        for (const auto& folder : {home_, root_, folder_ / "elsewhere"}) {
            removeTree(folder);
        }
        makeLogs();
        const SubstituteHome home(home_, {{"BRIMVAULT_TRIAL_ROOT", root_}});
        scanners::ContainersFolderScannerManager containers(home_ / "Library/Containers");
        const scanners::PathsGenerator paths;
        const auto operation = std::make_shared<scanners::SLogsOperation>(containers, paths);
        const auto result = runScan(operation);
        qint64 count = 0;
        EXPECT_EQ(listed(result.items, true), expectedLogs(count)) << "in round " << round;
        EXPECT_EQ(operation->nTopLevelItemsCount(), count);
        EXPECT_THAT(result.percents, testing::Each(testing::AllOf(testing::Ge(0), testing::Le(100))));
        expectToCleanWhatIsTicked(engine::Section::logs, result.items, {});
        items += static_cast<std::size_t>(result.items.size());
    }
    EXPECT_GT(items, 500U);
}

TEST_F(RandomHomes, DownloadsAreListedAndCleanedByTheRules) {
    std::size_t items = 0;
    for (int round = 0; round < 60; ++round) {
        removeTree(home_);
        const auto downloads = home_ / "Downloads";
        growRandomly(random_, downloads, 3);
        const SubstituteHome home(home_);
        const auto operation = std::make_shared<scanners::SDwnOperation>();
        const auto result = runScan(operation);
        Listing expected;
        for (const auto& child : visibleChildren(downloads)) {
            expected[child] = {child.filename(), sizeOf(child)};
        }
        EXPECT_EQ(listed(result.items, false, downloads), expected) << "in round " << round;
        EXPECT_EQ(operation->nTopLevelItemsCount(), static_cast<qint64>(expected.size()));
        expectToCleanWhatIsTicked(engine::Section::downloads, result.items, downloads);
        items += expected.size();
    }
    EXPECT_GT(items, 100U);
}

TEST_F(RandomHomes, TrashIsListedAndCleanedByTheRules) {
    std::size_t items = 0;
    for (int round = 0; round < 40; ++round) {
        for (const auto& folder : {home_, root_, volumes_[0], volumes_[1]}) {
            removeTree(folder);
        }
        makeTrash();
        const bool hiddenToo = chance(2);
        writeFile(home_ / "Library/Preferences/com.apple.finder.plist",
                  std::string("<plist><dict><key>AppleShowAllFiles</key>") + (hiddenToo ? "<true/>" : "<false/>") +
                      "</dict></plist>");
        const SubstituteHome home(home_, {{"BRIMVAULT_TRIAL_ROOT", root_}});
        platform::FinderPreferences finder;
        const auto operation =
            std::make_shared<scanners::STrshOperation>(scanners::STrshOperation::Sources{.finder = finder});
        const auto result = runScan(operation);
        qint64 count = 0;
        EXPECT_EQ(listed(result.items, true), expectedTrash(count, hiddenToo)) << "in round " << round;
        EXPECT_EQ(operation->nTopLevelItemsCount(), count);
        expectToCleanWhatIsTicked(engine::Section::trash, result.items, {});
        items += static_cast<std::size_t>(result.items.size());
    }
    EXPECT_GT(items, 300U);
}

}  // namespace brimvault::tests
