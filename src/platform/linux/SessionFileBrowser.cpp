#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QByteArray>
#include <QDBusMessage>
#include <QStandardPaths>
#include <array>
#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include "platform/FileBrowser.h"
#include "platform/linux/BusCall.h"

// File browsers answer to one interface on the session bus, org.freedesktop.FileManager1, which the bus starts one for
// when none is running.

namespace brimvault::platform {

namespace {

constexpr std::chrono::seconds answerLimit{15};    // a file browser that starts from a cold disk takes some seconds
constexpr std::chrono::milliseconds interval{20};  // between looks whether it has ended
constexpr std::chrono::milliseconds openerLimit{3'000};  // what has not failed by then has opened the folder

// The bytes of the path, escaped: a name need not be text.
QString uriOf(const std::filesystem::path& path) {
    const QByteArray bytes = QByteArray::fromStdString(path.native());
    return QStringLiteral("file://") + QString::fromLatin1(bytes.toPercentEncoding("/"));
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
    auto request =
        QDBusMessage::createMethodCall(service, QStringLiteral("/org/freedesktop/FileManager1"), service, method);
    request << QStringList{uriOf(path)} << QString();  // no start-up notification
    return callOnBus(Bus::session, request, answerLimit, {[this] { return givenUp_.load(); }, {}}).has_value();
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
