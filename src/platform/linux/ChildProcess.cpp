#include "platform/linux/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <iterator>
#include <system_error>
#include <thread>

namespace brimvault::platform {

namespace {

std::vector<char*> pointersTo(std::vector<std::string>& words) {
    std::vector<char*> pointers;
    std::transform(words.begin(), words.end(), std::back_inserter(pointers), [](auto& word) { return word.data(); });
    pointers.push_back(nullptr);
    return pointers;
}

void addStreams(posix_spawn_file_actions_t& actions, const ProgramStart& program) {
    if (program.streams == ProgramStart::Streams::null) {
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            ::posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_RDWR, 0);
        }
    }
    if (program.output >= 0) {
        ::posix_spawn_file_actions_adddup2(&actions, program.output, STDOUT_FILENO);
    }
    ::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
}

// Libraries ignore SIGPIPE in this process, which a child would inherit.
void setAttributes(posix_spawnattr_t& attributes, ProgramStart::Leads leads) {
    sigset_t reset{};
    sigemptyset(&reset);
    sigaddset(&reset, SIGPIPE);
    ::posix_spawnattr_setsigdefault(&attributes, &reset);
    unsigned flags = POSIX_SPAWN_SETSIGDEF;
    flags |= leads == ProgramStart::Leads::session ? POSIX_SPAWN_SETSID : 0U;
    flags |= leads == ProgramStart::Leads::processGroup ? POSIX_SPAWN_SETPGROUP : 0U;  // a new one, by default
    ::posix_spawnattr_setflags(&attributes, static_cast<short>(flags));
}

// A negative number where it could not be started.
pid_t spawn(ProgramStart program) {
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    addStreams(actions, program);
    posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    setAttributes(attributes, program.leads);
    pid_t child = -1;
    const auto arguments = pointersTo(program.words);
    const auto environment = pointersTo(program.environment);
    const int code =
        ::posix_spawn(&child, arguments.front(), &actions, &attributes, arguments.data(), environment.data());
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&actions);
    return code == 0 ? child : -1;
}

}  // namespace

std::optional<ChildProcess> ChildProcess::start(const ProgramStart& program) {
    const pid_t child = spawn(program);
    if (child < 0) {
        return std::nullopt;
    }
    ChildProcess process(child, files::FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, child, 0U))));
    if (!process.descriptor_.isOpen()) {  // its end could not be waited for
        (void)::kill(child, SIGKILL);
        reapInBackground(process);
        return std::nullopt;
    }
    return process;
}

bool ChildProcess::hasEnded() {
    pollfd event{descriptor(), POLLIN, 0};
    if (!ended_ && ::poll(&event, 1, 0) > 0) {
        int status = 0;
        ended_ = true;
        succeeded_ = ::waitpid(id_, &status, WNOHANG) == id_ && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    return ended_;
}

void ChildProcess::reapInBackground(const ChildProcess& process) {
    try {
        std::thread([id = process.id_] { ::waitpid(id, nullptr, 0); }).detach();
    } catch (const std::system_error&) {
        // There are no more threads to be had: it stays a zombie as long as this process lives.
    }
}

std::vector<std::string> currentEnvironment() {
    std::vector<std::string> variables;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        variables.emplace_back(*variable);
    }
    return variables;
}

}  // namespace brimvault::platform
