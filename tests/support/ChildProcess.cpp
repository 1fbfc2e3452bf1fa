#include "support/ChildProcess.h"

#include <fcntl.h>
#include <grp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

namespace brimvault::tests {

namespace {

constexpr std::string_view notTried = "not tried: ";
constexpr unsigned nobody = 65534;

std::string systemText() { return std::generic_category().message(errno); }

[[noreturn]] void answerAndEnd(int descriptor, const std::function<std::string()>& work) {
    std::string answer;
    try {
        answer = work();
    } catch (const std::exception& problem) {
        answer = problem.what();
    }
    (void)!::write(descriptor, answer.data(), answer.size());  // the other end is read meanwhile
    ::_exit(0);
}

}  // namespace

std::string inChildProcess(const std::function<std::string()>& work) {
    int ends[2] = {};
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        return "pipe: " + systemText();
    }
    const pid_t child = ::fork();
    if (child == 0) {
        answerAndEnd(ends[1], work);
    }
    ::close(ends[1]);
    std::string answer;
    char buffer[4096];
    for (ssize_t count = 0; (count = ::read(ends[0], buffer, sizeof buffer)) > 0;) {
        answer.append(buffer, static_cast<std::size_t>(count));
    }
    ::close(ends[0]);
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        return answer + " (the child process broke off with status " + std::to_string(status) + ")";
    }
    return answer;
}

std::string cannotTry(const std::string& reason) { return std::string(notTried) + reason; }

bool couldNotTry(const std::string& answer) { return answer.starts_with(notTried); }

void becomeNobody() {
    if (::getuid() != 0) {
        return;
    }
    if (::setgroups(0, nullptr) != 0 || ::setgid(nobody) != 0 || ::setuid(nobody) != 0) {
        throw std::system_error(errno, std::generic_category(), "setuid");
    }
}

void giveToNobody(const std::string& folder) {
    if (::getuid() != 0) {
        return;
    }
    (void)!::lchown(folder.c_str(), nobody, nobody);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        (void)!::lchown(entry.path().c_str(), nobody, nobody);
    }
}

std::string keepMountsPrivate() {
    const auto user = std::to_string(::getuid());
    const auto group = std::to_string(::getgid());
    if (::unshare(CLONE_NEWNS) != 0) {
        if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
            return "no private mounts: " + systemText();
        }
        std::ofstream("/proc/self/setgroups") << "deny";
        std::ofstream("/proc/self/uid_map") << "0 " + user + " 1";
        std::ofstream("/proc/self/gid_map") << "0 " + group + " 1";
    }
    if (::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
        return "no private mounts: " + systemText();
    }
    return {};
}

void limitDescriptors(unsigned count) {
    rlim_t end = 0;  // above the numbers that are to be free
    for (unsigned free = 0; free < count; ++end) {
        free += ::fcntl(static_cast<int>(end), F_GETFD) < 0 ? 1 : 0;
    }
    const rlimit limit{end, end};
    if (::setrlimit(RLIMIT_NOFILE, &limit) != 0) {
        throw std::system_error(errno, std::generic_category(), "setrlimit");
    }
}

}  // namespace brimvault::tests
