#include "platform/linux/DefaultProgram.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QStandardPaths>
#include <array>
#include <chrono>
#include <thread>

namespace brimvault::platform {

namespace {

constexpr std::chrono::milliseconds interval{20};        // between looks whether it has ended
constexpr std::chrono::milliseconds openerLimit{3'000};  // what has not failed by then has opened it

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

// Some openers end when the thing is open, others when it is closed.
bool hasOpened(pid_t opener, const std::function<bool()>& isGivenUp) {
    const auto deadline = std::chrono::steady_clock::now() + openerLimit;
    while (std::chrono::steady_clock::now() < deadline && !isGivenUp()) {
        int status = 0;
        if (const pid_t ended = ::waitpid(opener, &status, WNOHANG); ended != 0) {
            return ended == opener && WIFEXITED(status) && WEXITSTATUS(status) == 0;
        }
        std::this_thread::sleep_for(interval);
    }
    std::thread([opener] { ::waitpid(opener, nullptr, 0); }).detach();  // takes note of its end
    return !isGivenUp();
}

}  // namespace

bool openWithDefaultProgram(const std::string& uri, const std::function<bool()>& isGivenUp) {
    const QString opener = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
    const pid_t child = opener.isEmpty() || isGivenUp() ? -1 : start(opener.toStdString(), uri);
    return child > 0 && hasOpened(child, isGivenUp);
}

}  // namespace brimvault::platform
