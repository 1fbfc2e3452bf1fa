// The history of what was removed: what it says, and that nothing in the place of its file can do harm.

#include "engine/removal/RemovalHistory.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <csignal>

#include "engine/notification/Notifications.h"
#include "engine/removal/FCutter.h"
#include "platform/LibraryURLs.h"
#include "platform/RotatedFile.h"
#include "support/ChildProcess.h"
#include "support/EventLoop.h"
#include "support/FixtureTrees.h"
#include "support/HeardNotifications.h"
#include "support/SubstituteHome.h"

namespace brimvault::tests {

using namespace engine;

namespace {

ItemOutcome removedItem(const fs::path& path) { return {Section::caches, {path}, 7, 1, true}; }

class History : public testing::Test {
protected:
    /// What becomes of two items of a clean is written, or not; the clean itself goes on.
    void writeTwo(bool kept = true) const {
        RemovalHistory history(state_);
        history.setKept(kept);
        history.add(removedItem("/first"));
        history.add(removedItem("/second"));
        EXPECT_TRUE(history.waitUntilWritten());
    }
    [[nodiscard]] std::vector<QJsonObject> written() const {
        std::vector<QJsonObject> lines;
        for (const auto& line : QString::fromStdString(contentOf(file_)).split(u'\n', Qt::SkipEmptyParts)) {
            lines.push_back(QJsonDocument::fromJson(line.toUtf8()).object());
        }
        return lines;
    }

    TemporaryFolder folder_;
    const fs::path state_ = folder_ / "state/brimvault";
    const fs::path file_ = state_ / "history.jsonl";
};

}  // namespace

TEST_F(History, SaysOfEachItemWhatBecameOfItUnderExactlyItsPath) {
    ItemOutcome failed{Section::languageResources, {"/100%\n\"\\"}, 7, {}, false, QStringLiteral("no \"right\"")};
    const auto time = std::chrono::system_clock::time_point(std::chrono::seconds(86400));
    EXPECT_EQ(RemovalHistory::line(failed, time),
              R"({"time":"1970-01-02T00:00:00Z","section":"languages","path":"/100%\u000a\"\\","bytes":7,)"
              R"("result":"failed","reason":"no \"right\""})"
              "\n");
    EXPECT_EQ(RemovalHistory::line({Section::trash, {"/a\xff%", "/b"}, 0, {}, true}, time),
              R"({"time":"1970-01-02T00:00:00Z","section":"trash","targets":["/a%FF%25","/b"],)"
              R"("pathEncoding":"percent","bytes":0,"result":"removed"})"
              "\n");
    failed.emptied = 1;
    EXPECT_THAT(RemovalHistory::line(failed, time), testing::HasSubstr("\"failed\"")) << "something is left";
    failed.gone = true;
    EXPECT_THAT(RemovalHistory::line(failed, time), testing::EndsWith("\"bytes\":7,\"result\":\"emptied\"}\n"));
    ItemOutcome large{Section::caches, {}, 0, {}, true};
    large.paths.assign(20'000, "/some/long/path");
    const auto text = RemovalHistory::line(large, time);
    const auto told = QJsonDocument::fromJson(QByteArray::fromStdString(text)).object();
    EXPECT_LT(text.size(), 20'000U);
    EXPECT_EQ(told[u"targets"].toArray().size() + told[u"moreTargets"].toInt(), 20'000);
    for (const auto& name : oddNames()) {
        const auto line = RemovalHistory::line(removedItem("/" + name), time);
        const auto object = QJsonDocument::fromJson(QByteArray::fromStdString(line)).object();
        const auto path = object[u"path"].toString().toUtf8();
        EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1);
        EXPECT_EQ((object.contains(u"pathEncoding") ? QByteArray::fromPercentEncoding(path) : path).toStdString(),
                  "/" + name);
    }
}

TEST_F(History, IsForItsOwnerAloneAndNeverGrowsBeyondTwoFiles) {
    constexpr std::size_t maxBytes = 2000;
    RemovalHistory history(state_, maxBytes);
    const auto fill = [&](int count) {
        for (int number = 1; number <= count; ++number) {
            history.add(removedItem("/item-" + std::to_string(number)));
        }
        EXPECT_TRUE(history.waitUntilWritten());
    };
    const auto permissionsOf = [](const fs::path& path) { return files::statusOf(path)->permissions; };
    for (const int count : {1, 10, 10, 1000}) {
        fill(count);
        EXPECT_EQ(written().back()[u"path"].toString().toStdString(), "/item-" + std::to_string(count));
        EXPECT_LE(fs::file_size(file_), maxBytes);
    }
    EXPECT_LE(fs::file_size(state_ / "history.old.jsonl"), maxBytes);
    EXPECT_GT(fs::file_size(state_ / "history.old.jsonl"), maxBytes / 2);
    EXPECT_EQ(std::distance(fs::directory_iterator(state_), fs::directory_iterator()), 2);
    EXPECT_EQ(permissionsOf(file_), 0600U);
    EXPECT_EQ(permissionsOf(state_), 0700U);
    fs::permissions(file_, fs::perms::others_read, fs::perm_options::add);
    fill(1);
    EXPECT_EQ(permissionsOf(file_), 0600U);
}

TEST_F(History, TouchesNothingInThePlaceOfItsFileAndWaitsForNobody) {
    const auto precious = folder_ / "precious";
    const std::vector<std::function<void()>> hostile = {
        [&] { fs::create_symlink(precious, file_); },
        [&] { fs::create_hard_link(precious, file_); },
        [&] { fs::create_directory(file_); },
        [&] { ASSERT_EQ(::mkfifo(file_.c_str(), 0600), 0); },
        [&] {
            fs::remove(state_);
            fs::create_directory(folder_ / "elsewhere");
            fs::create_directory_symlink(folder_ / "elsewhere", state_);
        },
        [&] {
            fs::remove(state_);
            writeFile(state_, "no folder");
        },
    };
    for (const auto& make : hostile) {
        fs::create_directories(state_);
        writeFile(precious, "precious");
        make();
        writeTwo();
        EXPECT_EQ(contentOf(precious), "precious");
        EXPECT_FALSE(fs::exists(folder_ / "elsewhere") && !fs::is_empty(folder_ / "elsewhere"));
        fs::remove_all(state_);
    }
    fs::create_directories(state_);
    ASSERT_EQ(::mkfifo(file_.c_str(), 0600), 0);
    const files::FileDescriptor reader(::open(file_.c_str(), O_RDONLY | O_NONBLOCK));
    writeTwo();
    char byte = 0;
    EXPECT_LE(::read(reader.number(), &byte, 1), 0) << "nothing was written into the pipe";
}

// The renamed file is a full one at any time: no process renames what another has just begun over it.
TEST_F(History, OfSeveralProcessesLosesNoFile) {
    constexpr std::size_t maxBytes = 400;
    std::string line(100, 'x');
    line.back() = '\n';
    const auto old = state_ / "old";
    const auto append = [&] {
        std::string wrong;
        for (int number = 0; number < 2000 && wrong.empty(); ++number) {
            wrong = platform::RotatedFile(state_, "file", "old", maxBytes).append(line) != 0 ? "not appended" : "";
            wrong += fs::exists(old) && fs::file_size(old) < maxBytes ? "a full file was replaced by a new one" : "";
        }
        return wrong;
    };
    const pid_t other = ::fork();
    if (other == 0) {
        ::_exit(append().empty() ? 0 : 1);
    }
    EXPECT_EQ(append(), "");
    int status = 0;
    EXPECT_EQ(::waitpid(other, &status, 0), other);
    EXPECT_EQ(status, 0);
}

TEST_F(History, CutsOffWhatAFullDiskTookOfALine) {
    EXPECT_WELL_IN_CHILD([&]() -> std::string {
        const platform::RotatedFile file(state_, "file", "old", 1000);
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit most{150, 150};
        std::string line(100, 'x');
        line.back() = '\n';
        return ::setrlimit(RLIMIT_FSIZE, &most) != 0            ? cannotTry("no limit can be set")
               : file.append(line) != 0                         ? "there was room for the first"
               : file.append(line) != EFBIG                     ? "there was room for the second"
               : contentOf(state_ / "file") != line             ? "a part of a line stays"
               : file.append("short\n") != 0                    ? "there was room for a short one"
               : contentOf(state_ / "file") != line + "short\n" ? "the short one is missing"
                                                                : "";
    });
}

TEST_F(History, IsWrittenOnlyWhileItIsKept) {
    writeTwo();
    writeTwo(false);
    EXPECT_EQ(written().size(), 2U) << "and what was there stays";
    writeTwo();
    EXPECT_EQ(written().size(), 4U);
}

TEST_F(History, OfACleanTellsWhatWentAndWhatStayed) {
    {
        const SubstituteHome real(folder_ / "home", {{"XDG_STATE_HOME", folder_ / "outside"}});
        EXPECT_EQ(platform::LibraryURLs::getHistoryFolderURL(), folder_ / "outside/brimvault");
    }
    const SubstituteHome system(folder_ / "home",
                                {{"BRIMVAULT_TRIAL_ROOT", folder_ / "root"}, {"XDG_STATE_HOME", folder_ / "outside"}});
    const auto home = folder_ / "home";
    EXPECT_EQ(platform::LibraryURLs::getHistoryFolderURL(), home / ".local/state/brimvault")
        << "a trial writes nowhere else";
    writeFile(home / ".cache/a", "x");
    writeFile(home / ".local/state/app/x", "x");
    const ItemArray items = {FFItem::initWithPath(home / ".cache/a", 5),
                             FFItem::initWithPath(home / ".local/state/app", 6)};  // is protected
    for (const auto& item : items) {
        item->setPpbDeletable(true);
    }
    RemovalHistory history(*platform::LibraryURLs::getHistoryFolderURL());
    auto table = CleanTable::fileSections();
    table.volumes = nullptr;
    table.history = &history;
    const HeardNotifications heard = {notification::cleanFinished};
    FCutter cutter(table);
    cutter.Clean(std::nullopt, std::nullopt, items, std::nullopt, std::nullopt);
    ASSERT_TRUE(runUntil([&] { return heard.has(notification::cleanFinished); }));
    EXPECT_TRUE(history.waitUntilWritten());
    const auto lines = QString::fromStdString(contentOf(history.file())).split(u'\n');
    ASSERT_EQ(lines.size(), 3);
    EXPECT_THAT(lines[0].toStdString(), testing::HasSubstr("/.cache/a\",\"bytes\":5,\"result\":\"removed\"}"));
    EXPECT_THAT(lines[1].toStdString(),
                testing::HasSubstr("/.local/state/app\",\"bytes\":6,\"result\":\"failed\",\"reason\":\"Can't remove"));
}

}  // namespace brimvault::tests
