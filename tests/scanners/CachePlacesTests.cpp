#include <gmock/gmock.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <sstream>

#include "support/FileSections.h"
#include "support/FixtureTrees.h"
#include "support/OpenedElsewhere.h"
#include "support/SubstituteHome.h"
#include "trial/LinuxDesktop.h"

// What the rules of resources/places make of a whole desktop's caches and logs, and that a clean leaves all else as it
// was.

namespace brimvault::tests {

using engine::ItemArray;
using engine::Section;

namespace {

class CachePlaces : public testing::Test {
protected:
    CachePlaces() {
        fs::create_directories(home_);
        fs::create_directories(runtime_);
    }

    [[nodiscard]] std::string relative(const fs::path& path) const { return path.lexically_relative(home_).native(); }
    // "rule path bytes ticked admin note", as one line for each item.
    [[nodiscard]] std::vector<std::string> lines(const ItemArray& items) const {
        std::vector<std::string> all;
        for (const auto& item : items) {
            std::ostringstream line;
            const auto& details = item->details();
            line << (*details.rule == '\0' ? "caches" : details.rule) << ' ' << relative(item->pfpath()) << ' '
                 << item->pfSize() << (item->ppbChecked() ? " ticked" : " unticked")
                 << (details.needsAdministrator ? " admin" : "") << ' '
                 << (item->note() == engine::ItemNote::none ? "-" : keyOf(item->note()));
            all.push_back(line.str());
        }
        std::sort(all.begin(), all.end());
        return all;
    }

    const TemporaryFolder folder_;
    const fs::path home_ = folder_ / "home";
    const fs::path runtime_ = folder_ / "runtime";
    const SubstituteHome system_{home_, {{"BRIMVAULT_TRIAL_ROOT", folder_ / "root"}, {"XDG_RUNTIME_DIR", runtime_}}};
    const LinuxDesktop desktop_{home_};
};

std::vector<std::string> goldenLines() {
    std::ifstream file(BRIMVAULT_TEST_DATA "/scanners/linux-desktop.golden");
    std::vector<std::string> all;
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line.front() != '#') {
            all.push_back(line);
        }
    }
    std::sort(all.begin(), all.end());
    return all;
}

}  // namespace

TEST_F(CachePlaces, OfAWholeDesktopAreListedAsTheGoldenListHasThem) {
    desktop_.makeAll();
    LinuxDesktop::runFlatpak(runtime_, "org.example.Running", 1);
    const auto found = lines(scanSection(Section::caches).items + scanSection(Section::logs).items);
    const auto expected = goldenLines();
    std::string difference;
    const auto tell = [&](const auto& from, const auto& without, const char* sign) {
        std::vector<std::string> rest;
        std::set_difference(from.begin(), from.end(), without.begin(), without.end(), std::back_inserter(rest));
        for (const auto& line : rest) {
            difference += sign + line + "\n";
        }
    };
    tell(expected, found, "missing: ");
    tell(found, expected, "unexpected: ");
    EXPECT_EQ(difference, "");
}

TEST_F(CachePlaces, SayWhatIsInUseAndSpareWhatIsNoFile) {
    const auto caches = home_ / ".cache";
    writeFile(caches / "held/a/f", "12345");
    writeFile(caches / "socket/x/f", "12345");
    makeSocket(caches / "socket/x/s");
    makeSocket(caches / "s");
    ASSERT_EQ(::mkfifo((caches / "fifo").c_str(), 0600), 0);
    writeFile(caches / "spotify/f", "12345");
    writeFile(caches / "rclone/f", "12345");
    writeFile(caches / ".fr-open/f", "12345");
    const auto old = fs::file_time_type::clock::now() - std::chrono::hours(48);
    fs::last_write_time(caches / ".fr-open/f", old);
    fs::last_write_time(caches / ".fr-open", old);
    writeFile(home_ / ".var/app/org.example.A/cache/f", "12345");
    {
        const OpenedElsewhere held(caches / "held/a/f");
        const OpenedElsewhere music(caches / "spotify/f");
        const OpenedElsewhere uploads(caches / "rclone/f");
        const OpenedElsewhere archive(caches / ".fr-open/f");
        const OpenedElsewhere application(home_ / ".var/app/org.example.A/cache/f");
        const auto items = scanSection(Section::caches).items;
        EXPECT_THAT(
            lines(items),
            testing::ElementsAre("caches .cache/held 5 unticked in-use", "caches .cache/socket 5 unticked in-use",
                                 "flatpak.cache .var/app/org.example.A/cache 5 unticked in-use",
                                 "spotify .cache/spotify 5 unticked in-use", "uploads .cache/rclone 5 unticked work"));
        const auto name = QString::fromStdString(files::programName(held.process()));
        for (const auto& item : items) {
            const bool isNamed = item->pfname() != "socket" && item->note() == engine::ItemNote::inUse;
            EXPECT_EQ(item->details().noteArgument, isNamed ? name : QString()) << item->pfname();
        }
    }
    EXPECT_THAT(lines(scanSection(Section::caches).items),
                testing::IsSupersetOf({std::string("caches .cache/held 5 ticked -"),
                                       std::string("archive-leftovers .cache/.fr-open 5 ticked -"),
                                       std::string("flatpak.cache .var/app/org.example.A/cache 5 ticked -")}));
}

TEST_F(CachePlaces, OfABrowserAreInUseWhileItsProfileIs) {
    const auto profile = home_ / LinuxDesktop::profile;
    writeFile(profile / "Local State", "{}");
    writeFile(profile / "GPUCache/f", "12345");
    writeFile(home_ / ".config/chromium/Preferences", "{}");
    writeFile(home_ / ".cache/chromium/f", "12345");
    writeFile(home_ / ".mozilla/firefox/x/prefs.js", "");
    writeFile(home_ / ".cache/mozilla/f", "12345");
    const auto ended = ::fork();
    if (ended == 0) {
        ::_exit(0);
    }
    ::waitpid(ended, nullptr, 0);
    std::array<char, 256> machine{};
    ASSERT_EQ(::gethostname(machine.data(), machine.size() - 1), 0);
    const auto expect = [&](const std::string& state) {
        EXPECT_THAT(lines(scanSection(Section::caches).items),
                    testing::ElementsAre("browsers .cache/chromium 5 " + state, "electron .config/Code 5 " + state,
                                         "mozilla .cache/mozilla 5 " + state));
    };
    const auto lock = [&](const std::string& host, pid_t process) {
        desktop_.runProfile(LinuxDesktop::profile, host, process);
        desktop_.runProfile(".config/chromium", host, process);
        fs::remove(home_ / ".mozilla/firefox/x/lock");
        fs::create_symlink("127.0.0.1:+" + std::to_string(process), home_ / ".mozilla/firefox/x/lock");
    };
    expect("ticked -");
    lock(machine.data(), ::getpid());
    expect("unticked in-use");
    lock(machine.data(), ended);
    expect("ticked -");
    desktop_.runProfile(LinuxDesktop::profile, "another-machine", ended);
    EXPECT_THAT(lines(scanSection(Section::caches).items),
                testing::Contains("electron .config/Code 5 unticked in-use"));
}

TEST_F(CachePlaces, FollowTheRulesHoweverTheCachesFolderIsReached) {
    const auto disk = folder_ / "disk";
    writeFile(disk / "rclone/f", "12345");
    writeFile(disk / "ibus/f", "12345");
    writeFile(disk / "other/f", "12345");
    fs::create_directory_symlink(disk, home_ / ".cache");
    fs::create_directory(home_ / "Library");
    fs::create_directory_symlink(disk, home_ / "Library/Caches");
    EXPECT_THAT(lines(scanSection(Section::caches).items),
                testing::ElementsAre("caches ../disk/other 5 ticked -", "uploads ../disk/rclone 5 unticked work"));
    fs::remove(home_ / "Library/Caches");
    writeFile(home_ / "Library/Caches/com.vendor.x", "123");
    writeFile(home_ / "Library/Caches/.hidden", "123");
    EXPECT_THAT(lines(scanSection(Section::caches).items),
                testing::ElementsAre("caches ../disk/other 5 ticked -", "caches Library/Caches/com.vendor.x 3 ticked -",
                                     "uploads ../disk/rclone 5 unticked work"));
}

TEST_F(CachePlaces, ThatVariablesNameAreListedWhereTheyHoldWhatTheyShouldAndNowhereElse) {
    writeFile(home_ / "Documents/cache/download/x", "12345");
    writeFile(home_ / ".cache/modules/cache/download/x", "12345");
    writeFile(home_ / "src/pkg/mod/cache/download/x", "12345");
    writeFile(home_ / "other/x", "12345");
    const auto linesWith = [&](const char* variable, const fs::path& value) {
        const SubstituteHome system(home_, {{variable, value}});
        return lines(scanSection(Section::caches).items);
    };
    const std::string plain = "caches .cache/modules 5 ticked -";
    EXPECT_THAT(linesWith("GOMODCACHE", home_ / "Documents"), testing::ElementsAre(plain));
    EXPECT_THAT(linesWith("GOMODCACHE", home_), testing::ElementsAre(plain));
    writeFile(home_ / ".cache/cache/download/x", "12345");
    EXPECT_THAT(linesWith("GOMODCACHE", home_ / ".cache"),
                testing::ElementsAre("caches .cache/cache 5 ticked -", plain));
    fs::remove_all(home_ / ".cache/cache");
    EXPECT_THAT(linesWith("GOMODCACHE", home_ / "other"), testing::ElementsAre(plain));
    EXPECT_THAT(linesWith("GOMODCACHE", home_ / "src/pkg/mod"),
                testing::ElementsAre(plain, "go.mod.cache src/pkg/mod 5 unticked download"));
    EXPECT_THAT(linesWith("GOPATH", home_ / "src"),
                testing::ElementsAre(plain, "go.mod.path src/pkg/mod 5 unticked download"));
    EXPECT_THAT(linesWith("GOMODCACHE", home_ / ".cache/modules"),
                testing::ElementsAre("go.mod.cache .cache/modules 5 unticked download"))
        << "one row, and the stricter answer";
    fs::rename(home_ / "src", home_ / "go");
    EXPECT_THAT(linesWith("GOPATH", home_ / "go"), testing::ElementsAre(plain, "go.mod go/pkg/mod 5 unticked download"))
        << "two rules, one row";
}

TEST_F(CachePlaces, AreCalledAsTheDesktopCallsTheirApplications) {
    desktop_.makeApplications();
    desktop_.makeDesktopEntries();
    writeFile(home_ / ".cache/JetBrains/Idea/x", "12345");
    LinuxDesktop::runFlatpak(runtime_, "org.example.Image", 1);
    std::map<std::string, std::string> names;
    for (const auto& item : scanSection(Section::caches).items) {
        names[relative(item->pfpath()) + (item->ppbChecked() ? "" : ", not ticked")] =
            item->ppdisplayName().toStdString() + "/" + item->details().application.toStdString() + "/" +
            item->details().noteArgument.toStdString();
    }
    EXPECT_EQ(names[".var/app/org.example.Image/cache, not ticked"],
              "Image Editor (Flatpak)/org.example.Image/Image Editor");
    EXPECT_EQ(names[".var/app/org.example.Other/cache"], "org.example.Other//");
    EXPECT_EQ(names[LinuxDesktop::profile], "Visual Studio Code/code/");
    EXPECT_EQ(names[std::string(LinuxDesktop::profile) + ", not ticked"], "Visual Studio Code (offline)/code/");
    EXPECT_EQ(names["snap/editor/common/.cache"], "editor//");
    EXPECT_EQ(names[".cache/JetBrains/Idea, not ticked"], "JetBrains \u2013 Idea//");
}

// What a clean of everything that is ticked leaves. Rows that stand for several things go with exactly these.
TEST_F(CachePlaces, AreCleanedWithoutTouchingAnythingElse) {
    desktop_.makeAll();
    LinuxDesktop::runFlatpak(runtime_, "org.example.Running", 1);
    const auto caches = scanSection(Section::caches).items;
    const auto logs = scanSection(Section::logs).items;
    std::vector<fs::path> toGo;
    for (const auto& item : caches + logs) {
        if (item->ppbChecked()) {
            for (const auto& path : item->removalPaths()) {
                toGo.push_back(path.lexically_relative(home_));
            }
        }
    }
    const std::vector<fs::path> kept = {".var/app/org.example.Image/cache",
                                        ".var/app/org.example.Image/cache/tmp",
                                        "snap/editor/11/.cache",
                                        ".config/Code/Cache",
                                        ".config/Code/Cache/Cache_Data",
                                        ".config/Code/GPUCache",
                                        ".cache/pypoetry"};
    const auto inodes = [&] {
        std::vector<std::uint64_t> all;
        for (const auto& folder : kept) {
            const auto status = files::statusOf(home_ / folder);
            all.push_back(status ? status->identity.inode : 0);
        }
        return all;
    };
    const auto before = fingerprint(home_, toGo);
    const auto inodesBefore = inodes();
    EXPECT_TRUE(cleanItems(Section::caches, caches).empty());
    EXPECT_TRUE(cleanItems(Section::logs, logs).empty());
    for (const auto& path : toGo) {
        EXPECT_FALSE(files::statusOf(home_ / path)) << path;
    }
    EXPECT_EQ(fingerprint(home_), before);
    EXPECT_EQ(inodes(), inodesBefore);
    const auto left = scanSection(Section::caches).items + scanSection(Section::logs).items;
    EXPECT_TRUE(std::none_of(left.begin(), left.end(), [](const auto& item) { return item->ppbChecked(); }));
}

TEST_F(CachePlaces, StayUntickedWhereTheLookIsNotEnough) {
    // A link in the place of a folder that is looked into, and a working copy around one.
    writeFile(home_ / "disk/Idea/x", "12345");
    fs::create_directory(home_ / ".cache");
    fs::create_directory_symlink("../disk", home_ / ".cache/JetBrains");
    writeFile(home_ / ".cache/node/corepack/x", "12345");
    writeFile(home_ / ".cache/node/.git/HEAD", "ref");
    // A new archive of old files.
    writeFile(home_ / ".cache/.fr-new/inner/x", "12345");
    fs::last_write_time(home_ / ".cache/.fr-new/inner/x", fs::file_time_type::clock::now() - std::chrono::hours(100));
    // An old database with a new journal.
    for (const char* name : {"old.db", "old.db-wal", "older.db", "older.db-journal"}) {
        writeFile(home_ / ".cache" / name, "12345");
        const std::chrono::hours age(std::string_view(name) == "old.db-wal" ? 1 : 100);
        fs::last_write_time(home_ / ".cache" / name, fs::file_time_type::clock::now() - age);
    }
    // Profiles in packages that keep the only copy; and data that looks like a profile.
    const auto chat = home_ / ".var/app/org.example.A/config/WireTalk";
    writeFile(chat / "Local State", "{}");
    writeFile(chat / "GPUCache/x", "12345");
    const auto code = home_ / LinuxDesktop::profile;
    writeFile(code / "Local State", "{}");
    writeFile(code / "GPUCache/x", "12345");
    writeFile(code / "User/Preferences", "{}");
    writeFile(code / "User/Cache/x", "12345");
    EXPECT_THAT(lines(scanSection(Section::caches).items),
                testing::ElementsAre(
                    "caches .cache/node/.git 3 unticked copies", "caches .cache/older.db 5 ticked -",
                    "caches .cache/older.db-journal 5 ticked -", "databases .cache/old.db 5 unticked work",
                    "databases .cache/old.db-wal 5 unticked work", "electron .config/Code 5 ticked -",
                    "flatpak.electron.media .var/app/org.example.A/config/WireTalk 5 unticked work",
                    "jetbrains .cache/JetBrains 7 unticked work", "packages .cache/node/corepack 5 unticked copies"));
}

TEST_F(CachePlaces, OfASandboxAreInUseWhileItsApplicationRunsWhateverItsLockSays) {
    const auto profile = ".var/app/org.example.A/config/Chat";
    writeFile(home_ / profile / "Local State", "{}");
    writeFile(home_ / profile / "GPUCache/x", "12345");
    std::array<char, 256> machine{};
    ASSERT_EQ(::gethostname(machine.data(), machine.size() - 1), 0);
    desktop_.runProfile(profile, machine.data(), ::getpid());
    const std::string line = std::string("flatpak.electron ") + profile + " 5 ";
    EXPECT_THAT(lines(scanSection(Section::caches).items), testing::ElementsAre(line + "ticked -"))
        << "in a sandbox that number is another process's";
    LinuxDesktop::runFlatpak(runtime_, "org.example.A", 1);
    EXPECT_THAT(lines(scanSection(Section::caches).items), testing::ElementsAre(line + "unticked in-use"));
}

TEST_F(CachePlaces, AreNoneWhereTheCachesFolderIsOneOfProgramsOrOfSecrets) {
    for (const char* folder : {".ssh", ".gnupg/private", ".mozilla", ".m2/repository", ".config", ".local/share",
                               ".var/app/org.example.A/data", "snap/a"}) {
        writeFile(home_ / folder / "x", "12345");
        const SubstituteHome system(home_, {{"XDG_CACHE_HOME", home_ / folder}});
        EXPECT_THAT(lines(scanSection(Section::caches).items), testing::IsEmpty()) << folder;
    }
    fs::create_directory_symlink(".ssh", home_ / ".cache");
    EXPECT_THAT(lines(scanSection(Section::caches).items), testing::IsEmpty());
    writeFile(home_ / ".local/cache/x", "12345");
    const SubstituteHome system(home_, {{"XDG_CACHE_HOME", home_ / ".local/cache"}});
    EXPECT_THAT(lines(scanSection(Section::caches).items), testing::ElementsAre("caches .local/cache/x 5 ticked -"));
}

}  // namespace brimvault::tests
