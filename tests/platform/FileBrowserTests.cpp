#include "platform/FileBrowser.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QEventLoop>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>
#include <csignal>
#include <fstream>
#include <future>

#include "platform/Workspace.h"
#include "platform/linux/DefaultProgram.h"
#include "support/EventLoop.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"

namespace brimvault::tests {

using platform::FileBrowser;
using platform::Workspace;
using namespace std::chrono_literals;

namespace {

const QString service = QStringLiteral("org.freedesktop.FileManager1");

// A fake file browser on the bus: records the requests, and answers as it is set to.
class HeardRequests final : public QDBusVirtualObject {
public:
    enum class Answer { reply, error, none };

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        heard.append(message.member() + QLatin1Char(' ') + message.arguments().value(0).toStringList().join(u','));
        if (answer == Answer::reply) {
            connection.send(message.createReply());
        } else if (answer == Answer::error) {
            connection.send(message.createErrorReply(QDBusError::Failed, QStringLiteral("no")));
        }
        return true;
    }

    Answer answer = Answer::reply;
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

}  // namespace

TEST_F(OnASessionBus, AsksForItemsByTheirBytes) {
    EXPECT_TRUE(answerTo([&] { return browser_->showItem("/a b/caf\xe9 100%\n#?"); }));
    EXPECT_TRUE(answerTo([&] { return browser_->showItemProperties("/ö"); }));
    EXPECT_EQ(requests_.heard, QStringList({QStringLiteral("ShowItems file:///a%20b/caf%E9%20100%25%0A%23%3F"),
                                            QStringLiteral("ShowItemProperties file:///%C3%B6")}));
}

TEST_F(OnASessionBus, AnswersNoWhereNobodyTakesTheRequest) {
    requests_.answer = HeardRequests::Answer::error;
    EXPECT_FALSE(answerTo([&] { return browser_->showItem("/item"); }));
    EXPECT_EQ(requests_.heard.size(), 1);
    QDBusConnection(busName).unregisterService(service);
    EXPECT_FALSE(answerTo([&] { return browser_->showItem("/item"); }));
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
    EXPECT_FALSE(answerTo([&] { return browser_->showItem("/item"); }));
    EXPECT_EQ(requests_.heard.size(), 1);
}

TEST_F(OnASessionBus, GivesUpOnAFileBrowserThatNeverAnswers) {
    requests_.answer = HeardRequests::Answer::none;
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
    const auto announced = std::async(std::launch::async, [] { Workspace::ofSession()->announceStart(); });
    EXPECT_EQ(listening.exec(), 0);
}

TEST(DefaultProgram, AnswersAsTheOpenerEndsAndAtOnceWhenItIsStopped) {
    const trial::TemporaryFolder folder;
    const QByteArray before = qgetenv("PATH");
    qputenv("PATH", QByteArray::fromStdString(folder.path().native()) + ':' + before);
    const auto pipe = folder / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    std::stop_source stop;
    const auto opens = [&](const std::string& script) {
        trial::writeFile(folder / "xdg-open", "#!/bin/sh\n" + script);
        std::filesystem::permissions(folder / "xdg-open", std::filesystem::perms::owner_all);
        return platform::openWithDefaultProgram("file:///a%20b", stop.get_token());
    };
    EXPECT_TRUE(opens("test \"$1\" = file:///a%20b"));
    EXPECT_FALSE(opens("exit 1"));
    EXPECT_FALSE(opens("kill -9 $$"));
    auto answer = std::async(std::launch::async, opens, "echo $$ >'" + pipe.native() + "'\nexec sleep infinity");
    pid_t opener = 0;
    std::ifstream(pipe) >> opener;
    stop.request_stop();
    EXPECT_EQ(answer.wait_for(2s), std::future_status::ready) << "it would be waited for three seconds";
    EXPECT_FALSE(answer.get());
    EXPECT_EQ(::kill(opener, SIGKILL), 0) << "it goes on by itself";
    qputenv("PATH", before);
}

}  // namespace brimvault::tests
