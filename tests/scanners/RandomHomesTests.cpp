#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <random>

#include "support/FileSections.h"
#include "support/FixtureTrees.h"
#include "support/SubstituteHome.h"
#include "trial/TemporaryFolder.h"

// Sections of files over homes made at random: what a scan lists against a listing by the rules, and what a clean of
// some of it leaves against what is then to be left.

namespace brimvault::tests {

using namespace trial;

using engine::ItemArray;
using engine::Section;
namespace fs = std::filesystem;

namespace {

/// Where an item lies to name and size.
using Listing = std::map<fs::path, std::pair<fs::path, std::uint64_t>>;

struct Expected {
    Listing listing;
    qint64 count = 0;  ///< with what is to be counted and not listed

    void add(const fs::path& path, const fs::path& name) { listing[path] = {name, sizeOf(path)}; }
};

bool isHidden(const fs::path& path) { return path.filename().native().starts_with('.'); }

bool isRealFolder(const fs::path& folder) {
    return fs::is_directory(fs::symlink_status(folder)) && fs::canonical(folder) == folder;
}

std::vector<fs::path> visibleChildren(const fs::path& folder) {
    std::vector<fs::path> children;
    if (isRealFolder(folder)) {
        std::remove_copy_if(fs::directory_iterator(folder), fs::directory_iterator(), std::back_inserter(children),
                            isHidden);
    }
    return children;
}

bool liesIn(const fs::path& inner, const fs::path& folder) { return inner.native().starts_with(folder.native() + "/"); }

Listing listed(Section section, const ItemArray& items) {
    Listing listing;
    for (const auto& item : items) {
        const auto path = item->location();
        EXPECT_TRUE(item->ppbDeletable());
        EXPECT_EQ(item->ppbChecked(), section != Section::downloads);
        EXPECT_EQ(item->pfpath(), section == Section::downloads ? fs::path() : path);
        EXPECT_EQ(item->getDisplayIcon().kind == files::NodeKind::directory, fs::is_directory(fs::symlink_status(path)))
            << path;
        EXPECT_TRUE(listing.insert({path, {item->pfname(), item->pfSize()}}).second) << path;
    }
    return listing;
}

class RandomHomes : public testing::Test {
protected:
    // Plain containers, and such as lead elsewhere on the way to the folder or there.
    void makeContainers(const char* folder) {
        const auto containers = home_ / "Library/Containers";
        growRandomly(random_, containers, 1);  // files of one name and of two, links, containers without the folder
        writeFile(folder_ / "elsewhere/Library" / folder / "file", "12345");
        for (int number = 0; number < 4; ++number) {
            const auto inside = containers / ("app" + std::to_string(number)) / "Data/Library" / folder;
            if (chance(2)) {
                growRandomly(random_, inside, 2);
            } else {
                const auto link = chance(2) ? inside : inside.parent_path().parent_path();
                fs::create_directories(link.parent_path());
                fs::create_directory_symlink(folder_ / "elsewhere", link);
            }
        }
    }

    void makeLogs() {
        for (const auto& source : logFolders()) {
            growRandomly(random_, source, 2);
            for (const char* name :
                 {"CrashReporter", "Ubiquity", "talagent.log", "talagent.log.3", "talagent", "Ubiquity.log"}) {
                if (chance(2)) {
                    writeFile(source / name / "file", "12345");
                }
            }
        }
        makeContainers("Logs");
    }

    void makeTrash() {
        growRandomly(random_, home_ / ".Trash", 2);
        for (const auto& files : trashFiles()) {
            growRandomly(random_, files, 2);
            for (const auto& entry : fs::directory_iterator(files)) {
                const auto name = entry.path().filename().native();
                if (name.size() < 200) {  // a record's name is longer
                    writeFile(files.parent_path() / "info" / (name + ".trashinfo"), "[Trash Info]\nPath=/x\n");
                }
            }
        }
        for (const auto& volume : volumes_) {
            fs::permissions(volume / ".Trash", fs::perms::sticky_bit, fs::perm_options::add);
        }
        writeMountTable(root_, volumes_);
        hiddenToo_ = chance(2);
        writeFile(home_ / "Library/Preferences/com.apple.finder.plist",
                  std::string("<plist><dict><key>AppleShowAllFiles</key>") + (hiddenToo_ ? "<true/>" : "<false/>") +
                      "</dict></plist>");
    }

    [[nodiscard]] std::vector<fs::path> logFolders() const {
        return {home_ / "Library/Logs", home_ / "Library/Application Support/CrashReporter", root_ / "Library/Logs"};
    }
    [[nodiscard]] std::vector<fs::path> trashFiles() const {
        const auto user = std::to_string(::getuid());
        std::vector<fs::path> folders = {home_ / ".local/share/Trash" / "files"};
        for (const auto& volume : volumes_) {
            folders.push_back(volume / ".Trash" / user / "files");
            folders.push_back(volume / (".Trash-" + user) / "files");
        }
        return folders;
    }

    static void addChildren(Expected& expected, const fs::path& folder) {
        for (const auto& child : visibleChildren(folder)) {
            ++expected.count;
            expected.add(child, child.filename());
        }
    }
    void addContainers(Expected& expected, const char* folder) const {
        for (const auto& container : visibleChildren(home_ / "Library/Containers")) {
            const auto inside = container / "Data/Library" / folder;
            const auto kind = fs::symlink_status(container);
            if (fs::is_directory(kind) || fs::is_symlink(kind) || fs::hard_link_count(container) == 1) {
                ++expected.count;
                expected.add(inside, container.filename());
                if (!isRealFolder(inside.parent_path())) {
                    expected.listing[inside].second = 0;
                }
            }
        }
    }

    void addLogs(Expected& expected) const {
        for (const auto& source : logFolders()) {
            addChildren(expected, source);
        }
        std::erase_if(expected.listing, [&](const auto& file) {
            const auto name = file.first.filename();
            return file.first.parent_path() == logFolders().front() &&
                   (name == "CrashReporter" || name == "Ubiquity" || name.native().starts_with("talagent.log"));
        });
        for (const auto& container : visibleChildren(home_ / "Library/Containers")) {
            addChildren(expected, container / "Data/Library/Logs");
        }
        addContainers(expected, "Logs");
    }

    void addTrash(Expected& expected) const {
        auto folders = trashFiles();
        folders.push_back(home_ / ".Trash");
        for (const auto& folder : folders) {
            for (const auto& entry : fs::directory_iterator(folder)) {
                ++expected.count;
                if (hiddenToo_ || folder != home_ / ".Trash" || !isHidden(entry)) {
                    expected.add(entry.path(), entry.path().filename());
                    auto& size = expected.listing[entry.path()].second;
                    size = size == 0 ? sizeOfRecord(entry.path()) : size;
                }
            }
        }
    }
    // What is empty counts with the record that goes along.
    static std::uint64_t sizeOfRecord(const fs::path& item) {
        std::error_code none;
        const auto size =
            fs::file_size(item.parent_path().parent_path() / "info" / (item.filename().native() + ".trashinfo"), none);
        return none || item.parent_path().filename() != "files" ? 0 : size;
    }

    // Ticks some of the items, at random. What is to go with them: not what holds another that stays.
    std::vector<fs::path> tickSome(const ItemArray& items) {
        std::vector<fs::path> spared;
        for (const auto& item : items) {
            item->setPpbChecked(chance(2));
            if (!item->ppbChecked()) {
                spared.push_back(item->location());
            }
        }
        std::vector<fs::path> toGo;
        for (const auto& item : items) {
            const auto path = item->location();
            const bool holdsSpared =
                std::any_of(spared.begin(), spared.end(), [&](const fs::path& other) { return liesIn(other, path); });
            if (item->ppbChecked() && item->pfSize() != 0 && !holdsSpared) {
                toGo.push_back(path);
                if (path.parent_path().filename() == "files") {
                    toGo.push_back(path.parent_path().parent_path() / "info" /
                                   (path.filename().native() + ".trashinfo"));
                }
            }
        }
        return toGo;
    }

    void expectByTheRules(Section section, const std::function<void()>& make,
                          const std::function<void(Expected&)>& addByTheRules) {
        std::size_t items = 0;
        for (int round = 0; round < 50; ++round) {
            SCOPED_TRACE(round);
            for (const auto& folder : {home_, root_, folder_ / "elsewhere", volumes_[0], volumes_[1]}) {
                removeTree(folder);
            }
            make();
            const SubstituteHome home(home_, {{"BRIMVAULT_TRIAL_ROOT", root_}});
            Expected expected;
            addByTheRules(expected);
            auto left = fingerprint(folder_.path());
            const auto result = scanSection(section);
            EXPECT_EQ(listed(section, result.items), expected.listing);
            EXPECT_EQ(result.expectedCount, expected.count);
            EXPECT_THAT(result.percents, testing::Each(testing::AllOf(testing::Ge(0), testing::Le(100))));
            const auto toGo = tickSome(result.items);
            std::erase_if(left, [&](const auto& entry) {
                const auto path = folder_ / entry.first;
                return std::any_of(toGo.begin(), toGo.end(),
                                   [&](const fs::path& gone) { return path == gone || liesIn(path, gone); });
            });
            (void)cleanItems(section, result.items);
            EXPECT_EQ(fingerprint(folder_.path()), left);
            items += expected.listing.size();
        }
        EXPECT_GT(items, 100U);
    }

    bool chance(int of) { return std::uniform_int_distribution(1, of)(random_) == 1; }

    std::mt19937 random_{815};
    TemporaryFolder folder_;
    const fs::path home_ = folder_ / "home";
    const fs::path root_ = folder_ / "root";
    const std::vector<fs::path> volumes_ = {root_ / "volume", root_ / "odd \\ \n\t*#\xff\\040"};
    bool hiddenToo_ = false;
};

}  // namespace

TEST_F(RandomHomes, CachesAreListedAndCleanedByTheRules) {
    const auto make = [this] {
        growRandomly(random_, home_ / "Library/Caches", 3);
        makeContainers("Caches");
    };
    expectByTheRules(Section::caches, make, [this](Expected& expected) {
        addChildren(expected, home_ / "Library/Caches");
        addContainers(expected, "Caches");
    });
}

TEST_F(RandomHomes, DownloadsAreListedAndCleanedByTheRules) {
    expectByTheRules(
        Section::downloads, [this] { growRandomly(random_, home_ / "Downloads", 3); },
        [this](Expected& expected) { addChildren(expected, home_ / "Downloads"); });
}

TEST_F(RandomHomes, LogsAreListedAndCleanedByTheRules) {
    expectByTheRules(
        Section::logs, [this] { makeLogs(); }, [this](Expected& expected) { addLogs(expected); });
}

TEST_F(RandomHomes, TrashIsListedAndCleanedByTheRules) {
    expectByTheRules(
        Section::trash, [this] { makeTrash(); }, [this](Expected& expected) { addTrash(expected); });
}

}  // namespace brimvault::tests
