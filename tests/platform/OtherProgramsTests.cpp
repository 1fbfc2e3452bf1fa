#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QEventLoop>
#include <QLibrary>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <future>

#include "files/FileDescriptor.h"
#include "platform/FileBrowser.h"
#include "platform/ListScript.h"
#include "platform/QuorvelFallManager.h"
#include "platform/Workspace.h"
#include "platform/linux/BusCall.h"
#include "platform/linux/DefaultProgram.h"
#include "support/EventLoop.h"
#include "support/SubstituteHome.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using namespace std::chrono_literals;
using namespace trial;

using platform::FileBrowser;
using platform::QuorvelFallManager;
namespace fs = std::filesystem;

namespace {

const QString service = QStringLiteral("org.freedesktop.FileManager1");

// A fake file browser on the bus: records the requests, and answers as it is set to.
class HeardRequests final : public QDBusVirtualObject {
public:
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        heard.append(message.member() + QLatin1Char(' ') + message.arguments().value(0).toStringList().join(u','));
        if (answer == QDBusMessage::ReplyMessage) {
            connection.send(message.createReply());
        } else if (answer == QDBusMessage::ErrorMessage) {
            connection.send(message.createErrorReply(QDBusError::Failed, QStringLiteral("no")));
        }
        return true;
    }

    QDBusMessage::MessageType answer = QDBusMessage::ReplyMessage;  // or none
    QStringList heard;
};

// A session bus for the test alone, without services.
class OnASessionBus : public testing::Test {
protected:
    void SetUp() override {
        if (QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")).isEmpty()) {
            GTEST_SKIP() << "there is no dbus-daemon";
        }
        daemon_.start(QStringLiteral("dbus-daemon"),
                      {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address")});
        ASSERT_TRUE(daemon_.waitForStarted() && daemon_.waitForReadyRead());
        const QByteArray address = daemon_.readLine().trimmed();
        qputenv("DBUS_SESSION_BUS_ADDRESS", address);
        auto bus = QDBusConnection::connectToBus(QString::fromLatin1(address), busName);
        ASSERT_TRUE(bus.registerVirtualObject(QStringLiteral("/org/freedesktop/FileManager1"), &requests_));
        ASSERT_TRUE(bus.registerService(service));
    }
    void TearDown() override {
        QDBusConnection::disconnectFromBus(busName);
        qputenv("DBUS_SESSION_BUS_ADDRESS", before_);
        daemon_.kill();
        daemon_.waitForFinished();
    }

    // On another thread, as in the program, while the main thread runs its event loop.
    static bool answerTo(const std::function<bool()>& call) {
        auto answer = std::async(std::launch::async, call);
        EXPECT_TRUE(runUntil([&] { return answer.wait_for(0s) == std::future_status::ready; }));
        return answer.get();
    }

    const QString busName = QStringLiteral("file-browser-tests");
    const QByteArray before_ = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    QProcess daemon_;
    HeardRequests requests_;
    std::unique_ptr<FileBrowser> browser_ = FileBrowser::ofSession();
};

using Entries = std::vector<std::string>;

// A killed process needs a moment.
bool endsSoon(pid_t process) {
    const files::FileDescriptor handle(static_cast<int>(::syscall(SYS_pidfd_open, process, 0U)));
    pollfd end{handle.number(), POLLIN, 0};
    return process > 0 && (!handle.isOpen() || ::poll(&end, 1, 5000) == 1);
}

class StartedPrograms : public testing::Test {
protected:
    StartedPrograms() { EXPECT_EQ(::mkfifo(pipe_.c_str(), 0600), 0); }

    [[nodiscard]] std::optional<Entries> run(const std::string& script, std::chrono::milliseconds timeout = 24h) const {
        writeFile(folder_ / "script", script);
        return platform::runListScript(QString::fromStdString(folder_ / "script"), timeout, stop_.get_token());
    }
    // The process that writes its number into the pipe.
    [[nodiscard]] std::future<pid_t> started() const {
        return std::async(std::launch::async, [this] {
            pid_t process = 0;
            std::ifstream(pipe_) >> process;
            return process;
        });
    }

    TemporaryFolder folder_;
    std::stop_source stop_;
    const fs::path pipe_ = folder_ / "pipe";
    const std::string startAndTell_ = "sleep infinity & echo $! >'" + pipe_.native() + "'; printf 'told\\0half';";
};

}  // namespace

TEST_F(OnASessionBus, AsksForItemsByTheirBytes) {
    EXPECT_TRUE(answerTo([&] { return browser_->showItem("/a b/caf\xe9 100%\n#?"); }));
    EXPECT_TRUE(answerTo([&] { return browser_->showItemProperties("/ö"); }));
    EXPECT_EQ(requests_.heard, QStringList({QStringLiteral("ShowItems file:///a%20b/caf%E9%20100%25%0A%23%3F"),
                                            QStringLiteral("ShowItemProperties file:///%C3%B6")}));
}

TEST_F(OnASessionBus, AnswersNoWhereNobodyTakesTheRequest) {
    requests_.answer = QDBusMessage::ErrorMessage;
    EXPECT_FALSE(answerTo([&] { return browser_->showItem("/item"); }));
    EXPECT_EQ(requests_.heard.size(), 1);
    QDBusConnection(busName).unregisterService(service);
    EXPECT_FALSE(answerTo([&] { return browser_->showItem("/item"); }));
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
    EXPECT_FALSE(answerTo([&] { return browser_->showItem("/item"); }));
    EXPECT_EQ(requests_.heard.size(), 1);
}

TEST_F(OnASessionBus, GivesUpOnAFileBrowserThatNeverAnswers) {
    requests_.answer = QDBusMessage::InvalidMessage;
    auto answer = std::async(std::launch::async, [&] { return browser_->showItem("/item"); });
    ASSERT_TRUE(runUntil([&] { return !requests_.heard.isEmpty(); }));
    EXPECT_EQ(answer.wait_for(0s), std::future_status::timeout);
    browser_->giveUp();
    EXPECT_FALSE(answer.get());
    EXPECT_FALSE(answerTo([&] { return browser_->showItem("/item"); }));
    EXPECT_FALSE(answerTo([&] { return browser_->openFolder("/"); }));
}

TEST_F(OnASessionBus, TheStartIsAnnouncedToWhoeverListens) {
    QEventLoop listening;
    ASSERT_TRUE(QDBusConnection(busName).connect(
        {}, QStringLiteral("/com/quorvel/applications"), QStringLiteral("com.quorvel.Applications"),
        QStringLiteral("ApplicationStarted"), {QStringLiteral("com.quorvel.brimvault")}, {}, &listening, SLOT(quit())));
    QTimer::singleShot(10s, &listening, [&] { listening.exit(1); });
    const auto announced = std::async(std::launch::async, [] { platform::Workspace::ofSession()->announceStart(); });
    EXPECT_EQ(listening.exec(), 0);
}

TEST(SilentBus, HoldsUpNeitherACallNorAQuestionNorABroadcast) {
    using namespace platform;
    const TemporaryFolder folder;
    const auto path = (folder / "bus").native();
    const SubstituteHome home(folder.path(), {{"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + path}});
    sockaddr_un address{AF_UNIX, {}};
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    std::stop_source stop;
    const BusRequest ask{"a.b", "/a", "a.b", "C", nullptr};
    const BusSignal signal{"/a", "a.b", "S", nullptr};
    const std::function<void()> requests[] = {
        [&] { EXPECT_EQ(callOnBus(Bus::session, ask, 100ms, {}), nullptr); },
        [&] { EXPECT_EQ(callOnBus(Bus::session, ask, 24h, {}), nullptr); },
        [&] {
            EXPECT_EQ(callOnBus(Bus::session, ask, 24h, {stop.get_token(), &ask}), nullptr);
        },
        [&] { broadcastOnBus(Bus::session, signal, 100ms, {}); }};
    std::vector<std::future<void>> ends;  // outlives the sockets, whose end ends what hangs
    const files::FileDescriptor listener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    ASSERT_EQ(::bind(listener.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(::listen(listener.number(), 1), 0);
    std::vector<files::FileDescriptor> accepted;
    for (const std::string said : {"", "REJECTED EXTERNAL\r\nOK 00000000000000000000000000000000\r\nERROR\r\n"}) {
        for (const auto& request : requests) {
            ends.push_back(std::async(std::launch::async, request));
            accepted.emplace_back(::accept(listener.number(), nullptr, nullptr));
            (void)::send(accepted.back().number(), said.data(), said.size(), 0);
        }
    }
    stop.request_stop();
    for (const auto& end : ends) {
        EXPECT_EQ(end.wait_for(20s), std::future_status::ready) << "request " << &end - ends.data();
    }
}

TEST_F(StartedPrograms, DefaultOpenerAnswersAsItEndsAndAtOnceWhenItIsStopped) {
    const QByteArray before = qgetenv("PATH");
    qputenv("PATH", QByteArray::fromStdString(folder_.path().native()) + ':' + before);
    const auto opens = [&](const std::string& script) {
        writeFile(folder_ / "xdg-open", "#!/bin/sh\n" + script);
        fs::permissions(folder_ / "xdg-open", fs::perms::owner_all);
        return platform::openWithDefaultProgram("file:///a%20b", stop_.get_token());
    };
    EXPECT_TRUE(opens("test \"$1\" = file:///a%20b"));
    EXPECT_FALSE(opens("exit 1"));
    EXPECT_FALSE(opens("kill -9 $$"));
    auto opener = started();
    auto answer = std::async(std::launch::async, opens, "echo $$ >'" + pipe_.native() + "'\nexec sleep infinity");
    const auto process = opener.get();
    stop_.request_stop();
    EXPECT_EQ(answer.wait_for(2s), std::future_status::ready) << "it would be waited for three seconds";
    EXPECT_FALSE(answer.get());
    EXPECT_EQ(::kill(process, SIGKILL), 0) << "it goes on by itself";
    qputenv("PATH", before);
}

TEST_F(StartedPrograms, ListScriptAnswersWhatItPrintedUnlessItFailed) {
    const std::pair<const char*, std::optional<Entries>> examples[] = {
        {"printf 'a\\0\\0b c\\n\\0rest'", Entries{"a", "", "b c\n"}},
        {"printf rest", Entries()},
        {"exit 0", Entries()},
        {"printf 'a\\0'; exit 3", std::nullopt},
        {"printf 'a\\0'; kill -9 $$", std::nullopt},
        {"(syntax", std::nullopt},
    };
    for (const auto& [script, expected] : examples) {
        EXPECT_EQ(run(script), expected) << script;
    }
    EXPECT_EQ(platform::runListScript(QStringLiteral(":/scripts/none"), 24h, {}), std::nullopt);
}

TEST_F(StartedPrograms, ListScriptIsEndedAfterTheTimeoutWithAllThatItHasStarted) {
    for (const char* end : {"wait", "trap '' TERM INT HUP; while :; do :; done", "exec >&- 2>&-; wait"}) {
        auto process = started();
        EXPECT_EQ(run(startAndTell_ + end, 1s), Entries{"told"}) << end;
        EXPECT_TRUE(endsSoon(process.get())) << end;
    }
}

TEST_F(StartedPrograms, ListScriptIsEndedAtOnceWhenItIsStopped) {
    auto process = started();
    auto answer = std::async(std::launch::async, [&] { return run(startAndTell_ + "wait"); });
    const auto hanging = process.get();
    stop_.request_stop();
    EXPECT_EQ(answer.get(), std::nullopt);
    EXPECT_TRUE(endsSoon(hanging));
}

TEST_F(StartedPrograms, ListScriptIsEndedWhenItPrintsWithoutEnd) {
    EXPECT_EQ(run("head -c 70000000 /dev/zero | tr '\\0' x; sleep infinity"), std::nullopt);
}

TEST_F(StartedPrograms, ListScriptIsNotWaitedForOnceOnlyWhatItLeftBehindRuns) {
    auto process = started();
    EXPECT_EQ(run(startAndTell_), Entries{"told"});
    EXPECT_EQ(::kill(process.get(), SIGKILL), 0) << "it goes on by itself";
}

TEST_F(StartedPrograms, QuorvelFallManagerIsStartedWhereItLiesBesideTheProgramAndNotLookedForElsewhere) {
    const fs::path library = BRIMVAULT_TEST_LIBRARY;  // it counts how often it was started
    EXPECT_FALSE(QuorvelFallManager::start(folder_.path()));
    std::ofstream(folder_ / library.filename()) << "no library";
    EXPECT_FALSE(QuorvelFallManager::start(folder_.path()));
    EXPECT_FALSE(QuorvelFallManager::start(""));
    fs::create_directory(folder_ / "beside");
    fs::copy_file(library, folder_ / "beside" / library.filename());
    EXPECT_TRUE(QuorvelFallManager::start(folder_ / "beside"));
    const auto copy = QString::fromStdString(folder_ / "beside" / library.filename());
    const auto timesStarted = QLibrary::resolve(copy, "timesStarted");
    ASSERT_NE(timesStarted, nullptr);
    EXPECT_EQ(reinterpret_cast<int (*)()>(timesStarted)(), 1);
}

}  // namespace brimvault::tests
