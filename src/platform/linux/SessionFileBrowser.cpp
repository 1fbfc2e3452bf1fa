#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QByteArray>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QStandardPaths>
#include <QUuid>
#include <array>
#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include "platform/FileBrowser.h"
#include "platform/System.h"

// File browsers answer to one interface on the session bus, org.freedesktop.FileManager1, which the bus starts one for
// when none is running. Each request has a connection of its own: a bus that has come or gone concerns nothing but the
// request.

namespace brimvault::platform {

namespace {

constexpr int answerLimit = 15'000;  // milliseconds; a file browser that starts from a cold disk takes some seconds
constexpr std::chrono::milliseconds interval{20};        // between looks whether there is an answer
constexpr std::chrono::milliseconds openerLimit{3'000};  // what has not failed by then has opened the folder

// The bytes of the path, escaped: a name need not be text.
QString uriOf(const std::filesystem::path& path) {
    const QByteArray bytes = QByteArray::fromStdString(path.native());
    return QStringLiteral("file://") + QString::fromLatin1(bytes.toPercentEncoding("/"));
}

// Where the environment names the bus, that one: the library would keep to the first that it was told of.
QDBusConnection connectToSessionBus(const QString& name) {
    const auto address = system().environmentVariable("DBUS_SESSION_BUS_ADDRESS");
    return address.empty() ? QDBusConnection::connectToBus(QDBusConnection::SessionBus, name)
                           : QDBusConnection::connectToBus(QString::fromStdString(address), name);
}

// In a session of its own, so that what it opens does not end with this program.
pid_t start(const std::string& program, const std::string& argument) {
    posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    std::string first = program;
    std::string second = argument;
    const std::array<char*, 3> arguments = {first.data(), second.data(), nullptr};
    pid_t child = -1;
    const bool started = ::posix_spawn(&child, program.c_str(), nullptr, &attributes, arguments.data(), environ) == 0;
    ::posix_spawnattr_destroy(&attributes);
    return started ? child : -1;
}

class SessionFileBrowser final : public FileBrowser {
public:
    bool showItem(const std::filesystem::path& path) override {
        return callFileManager(QStringLiteral("ShowItems"), path);
    }
    bool showItemProperties(const std::filesystem::path& path) override {
        return callFileManager(QStringLiteral("ShowItemProperties"), path);
    }
    bool openFolder(const std::filesystem::path& folder) override {
        const QString opener = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
        const pid_t child =
            opener.isEmpty() || givenUp_ ? -1 : start(opener.toStdString(), uriOf(folder).toStdString());
        return child > 0 && hasOpened(child);
    }
    void giveUp() override { givenUp_ = true; }

private:
    bool callFileManager(const QString& method, const std::filesystem::path& path);
    [[nodiscard]] bool hasOpened(pid_t opener) const;

    std::atomic<bool> givenUp_ = false;
};

bool SessionFileBrowser::callFileManager(const QString& method, const std::filesystem::path& path) {
    const QString service = QStringLiteral("org.freedesktop.FileManager1");
    const QString name = QUuid::createUuid().toString();
    bool taken = false;
    if (!givenUp_) {
        auto bus = connectToSessionBus(name);
        auto request =
            QDBusMessage::createMethodCall(service, QStringLiteral("/org/freedesktop/FileManager1"), service, method);
        request << QStringList{uriOf(path)} << QString();  // no start-up notification
        if (bus.isConnected() && !givenUp_) {
            const auto answer = bus.asyncCall(request, answerLimit);
            while (!answer.isFinished() && !givenUp_) {
                std::this_thread::sleep_for(interval);
            }
            taken = answer.isFinished() && !answer.isError();
        }
    }
    QDBusConnection::disconnectFromBus(name);
    return taken;
}

// Some openers end when the folder is open, others when it is closed.
bool SessionFileBrowser::hasOpened(pid_t opener) const {
    const auto deadline = std::chrono::steady_clock::now() + openerLimit;
    while (std::chrono::steady_clock::now() < deadline && !givenUp_) {
        int status = 0;
        if (const pid_t ended = ::waitpid(opener, &status, WNOHANG); ended != 0) {
            return ended == opener && WIFEXITED(status) && WEXITSTATUS(status) == 0;
        }
        std::this_thread::sleep_for(interval);
    }
    std::thread([opener] { ::waitpid(opener, nullptr, 0); }).detach();  // takes note of its end
    return !givenUp_;
}

}  // namespace

std::unique_ptr<FileBrowser> FileBrowser::ofSession() { return std::make_unique<SessionFileBrowser>(); }

}  // namespace brimvault::platform
