#include "platform/ListScript.h"

#include <fcntl.h>
#include <unistd.h>

#include <QFile>
#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>

#include "files/SystemCall.h"
#include "platform/System.h"
#include "platform/linux/ChildProcess.h"
#include "platform/linux/StopEvent.h"

namespace brimvault::platform {

namespace {

using std::chrono::steady_clock;

constexpr std::size_t maxBytes = 64UL * 1024 * 1024;  // of a list
constexpr std::chrono::seconds killTimeout{1};        // for a process that is killed to end

// The user's own environment, but for what the program knows better.
std::vector<std::string> environmentOfScripts() {
    const std::array<std::string, 4> own = {
        "PATH=/usr/bin:/bin", "HOME=" + homeFolder().native(),
        "XDG_DATA_HOME=" + system().environmentVariable("XDG_DATA_HOME"),
        "BRIMVAULT_TRIAL_ROOT=" + system().environmentVariable("BRIMVAULT_TRIAL_ROOT")};
    auto environment = currentEnvironment();
    for (const auto& variable : own) {
        const auto name = variable.substr(0, variable.find('=') + 1);
        std::erase_if(environment, [&](const std::string& other) { return other.starts_with(name); });
        environment.push_back(variable);
    }
    return environment;
}

struct Pipe {
    files::FileDescriptor reading;
    files::FileDescriptor writing;
};

// Only the reading end is non-blocking. Closed where no pipe is to be had.
Pipe makePipe() {
    std::array<int, 2> ends{-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC) == 0) {
        (void)::fcntl(ends[0], F_SETFL, O_NONBLOCK);
    }
    return {files::FileDescriptor(ends[0]), files::FileDescriptor(ends[1])};
}

// Appends what the pipe holds now, as long as that is no more than any list has. False at the end of the stream.
bool readAvailable(const files::FileDescriptor& pipe, std::string& printed) {
    std::array<char, 64UL * 1024> bytes{};
    while (printed.size() <= maxBytes) {
        const ssize_t count = ::read(pipe.number(), bytes.data(), bytes.size());
        if (count <= 0) {
            return count < 0 && files::isTransient(errno);
        }
        printed.append(bytes.data(), static_cast<std::size_t>(count));
    }
    return true;
}

// Until the script ends, is stopped, prints too much, or the deadline has passed.
std::string readOutput(ChildProcess& shell, const files::FileDescriptor& pipe, const StopEvent& stopped,
                       steady_clock::time_point deadline) {
    std::string printed;
    bool isOpen = true;
    bool goesOn = true;
    while (goesOn) {
        pollfd events[] = {{stopped.descriptor(), POLLIN, 0},
                           {shell.descriptor(), POLLIN, 0},
                           {isOpen ? pipe.number() : -1, POLLIN, 0}};
        waitForAny(events, deadline);
        goesOn = events[0].revents == 0 && !shell.hasEnded() && steady_clock::now() < deadline;
        isOpen = isOpen && readAvailable(pipe, printed);  // last, so that a script that has ended has been read whole
        goesOn = goesOn && printed.size() <= maxBytes;
    }
    return printed;
}

// Kills the process group, which the script leads, and with it all that the script has started. A process in
// uninterruptible I/O on a dead volume (state D) ignores SIGKILL until the volume answers: it is not waited for.
void endGroup(ChildProcess& shell) {
    (void)::kill(-shell.id(), SIGKILL);
    pollfd events[] = {{shell.descriptor(), POLLIN, 0}};
    waitForAny(events, steady_clock::now() + killTimeout);
    if (!shell.hasEnded()) {
        ChildProcess::reapInBackground(shell);
    }
}

std::vector<std::string> entriesOf(const std::string& printed) {
    std::vector<std::string> entries;
    std::size_t begin = 0;
    for (std::size_t end = printed.find('\0'); end != std::string::npos; end = printed.find('\0', begin)) {
        entries.push_back(printed.substr(begin, end - begin));
        begin = end + 1;
    }
    return entries;
}

}  // namespace

std::optional<std::vector<std::string>> runListScript(const QString& script, std::chrono::milliseconds timeout,
                                                      const std::stop_token& stop) {
    const auto deadline = steady_clock::now() + timeout;
    QFile source(script);
    const StopEvent stopped(stop);
    Pipe pipe = makePipe();
    if (!stopped.isOpen() || !pipe.reading.isOpen() || !source.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    auto shell = ChildProcess::start({.words = {"/bin/sh", "-c", source.readAll().toStdString()},
                                      .environment = environmentOfScripts(),
                                      .leads = ProgramStart::Leads::processGroup,
                                      .streams = ProgramStart::Streams::null,
                                      .output = pipe.writing.number()});
    pipe.writing = files::FileDescriptor();  // else the stream would never end
    if (!shell) {
        return std::nullopt;
    }
    const auto printed = readOutput(*shell, pipe.reading, stopped, deadline);
    const bool isLate = !shell->hasEnded();
    if (isLate) {
        endGroup(*shell);
    }
    const bool isGood = (isLate || shell->hasSucceeded()) && !stop.stop_requested() && printed.size() <= maxBytes;
    return isGood ? std::optional(entriesOf(printed)) : std::nullopt;
}

}  // namespace brimvault::platform
