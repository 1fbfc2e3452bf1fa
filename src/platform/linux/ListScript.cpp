#include "platform/ListScript.h"

#include <signal.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QFile>
#include <QProcess>
#include <memory>

#include "platform/System.h"

namespace brimvault::platform {

namespace {

constexpr qint64 longestList = 64LL * 1024 * 1024;  // bytes
constexpr int lookInterval = 20;                    // milliseconds between looks at the stop and the limit
constexpr int timeToDie = 1000;                     // milliseconds in which a process that is killed ends

// The user's own environment, but for what the program knows better.
QProcessEnvironment environmentOfScripts() {
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PATH"), QStringLiteral("/usr/bin:/bin"));
    environment.insert(QStringLiteral("HOME"), QFile::decodeName(homeFolder().c_str()));
    for (const char* name : {"XDG_DATA_HOME", "BRIMVAULT_TRIAL_ROOT"}) {
        environment.insert(QLatin1String(name), QFile::decodeName(system().environmentVariable(name).c_str()));
    }
    return environment;
}

// The script leads a process group, so that what it has started ends with it. One that a dead volume holds inside the
// system ends when the volume answers, and is not waited for: its object is given up, since it would wait.
void endGroup(std::unique_ptr<QProcess> shell) {
    if (shell->processId() > 0) {
        ::kill(-static_cast<pid_t>(shell->processId()), SIGKILL);
    }
    if (shell->state() != QProcess::NotRunning && !shell->waitForFinished(timeToDie)) {
        (void)shell.release();
    }
}

std::vector<std::string> entriesOf(const QByteArray& printed) {
    std::vector<std::string> entries;
    qsizetype begin = 0;
    for (qsizetype end = printed.indexOf('\0'); end >= 0; end = printed.indexOf('\0', begin)) {
        entries.emplace_back(printed.constData() + begin, static_cast<std::size_t>(end - begin));
        begin = end + 1;
    }
    return entries;
}

}  // namespace

std::optional<std::vector<std::string>> runListScript(const QString& script, std::chrono::milliseconds limit,
                                                      const std::stop_token& stop) {
    QFile source(script);
    if (!source.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    const QDeadlineTimer deadline(limit);
    auto shell = std::make_unique<QProcess>();
    shell->setProcessEnvironment(environmentOfScripts());
    shell->setStandardInputFile(QProcess::nullDevice());
    shell->setStandardErrorFile(QProcess::nullDevice());
    shell->setChildProcessModifier([] { ::setpgid(0, 0); });
    shell->start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), QString::fromUtf8(source.readAll())});
    const auto isTooLong = [&] { return shell->bytesAvailable() > longestList; };
    while (shell->state() != QProcess::NotRunning && !shell->waitForFinished(lookInterval)) {
        if (deadline.hasExpired() || stop.stop_requested() || isTooLong()) {
            break;
        }
    }
    const bool late = shell->state() != QProcess::NotRunning;
    const bool well = late || (shell->error() != QProcess::FailedToStart &&
                               shell->exitStatus() == QProcess::NormalExit && shell->exitCode() == 0);
    std::optional<std::vector<std::string>> entries;
    if (well && !stop.stop_requested() && !isTooLong()) {
        entries = entriesOf(shell->readAllStandardOutput());
    }
    endGroup(std::move(shell));
    return entries;
}

}  // namespace brimvault::platform
