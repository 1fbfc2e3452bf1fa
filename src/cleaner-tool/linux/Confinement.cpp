#include "cleaner-tool/Confinement.h"

#include <fcntl.h>
#include <linux/capability.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>

namespace brimvault::cleaner {

namespace {

constexpr std::array<unsigned, 2> needed = {CAP_DAC_OVERRIDE, CAP_FOWNER};

constexpr bool isNeeded(unsigned capability) { return capability == needed[0] || capability == needed[1]; }

bool closeEverything() {
    const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    if (nothing < 0) {
        return false;
    }
    bool done = true;
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        done = ::dup2(nothing, standard) == standard && done;
    }
    constexpr unsigned firstOther = 3;
    return ::syscall(SYS_close_range, firstOther, ~0U, 0U) == 0 && done;
}

// The user at a controlling terminal could stop or end the process in the middle of a removal.
bool leaveTerminal() {
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTSTP, SIGTTIN, SIGTTOU, SIGPIPE}) {
        (void)::signal(signal, SIG_IGN);
    }
    if (::setsid() >= 0) {
        return true;
    }
    const int terminal = ::open("/dev/tty", O_RDWR | O_CLOEXEC);  // a process group leader cannot begin a session
    const bool hasLeft = terminal < 0 || ::ioctl(terminal, TIOCNOTTY) == 0;
    if (terminal >= 0) {
        ::close(terminal);
    }
    return hasLeft;
}

bool stopTimers() {
    for (const int signal : {SIGALRM, SIGVTALRM, SIGPROF, SIGXCPU, SIGXFSZ}) {
        (void)::signal(signal, SIG_IGN);
    }
    constexpr itimerval never{};
    return ::setitimer(ITIMER_REAL, &never, nullptr) == 0 && ::setitimer(ITIMER_VIRTUAL, &never, nullptr) == 0 &&
           ::setitimer(ITIMER_PROF, &never, nullptr) == 0;
}

// With a limited bounding set no program that the process executes could regain a capability.
bool limitBoundingSet() {
    for (unsigned capability = 0;; ++capability) {
        const int held = ::prctl(PR_CAPBSET_READ, capability, 0, 0, 0);
        if (held < 0) {
            return errno == EINVAL && capability > CAP_FOWNER;  // beyond the last one that this kernel knows
        }
        if (held == 1 && !isNeeded(capability) && ::prctl(PR_CAPBSET_DROP, capability, 0, 0, 0) != 0) {
            return false;
        }
    }
}

bool keepNeededCapabilities() {
    constexpr unsigned bitsOfWord = 32;
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3> sets{};
    for (const unsigned capability : needed) {
        auto& set = sets.at(capability / bitsOfWord);
        set.permitted |= 1U << capability % bitsOfWord;
        set.effective = set.permitted;
    }
    return ::syscall(SYS_capset, &header, sets.data()) == 0;
}

}  // namespace

bool resetInheritedState() {
    constexpr mode_t ownerOnly = 077;
    constexpr rlimit none{0, 0};
    ::umask(ownerOnly);
    return leaveTerminal() && stopTimers() && ::clearenv() == 0 && ::chdir("/") == 0 &&
           ::setrlimit(RLIMIT_CORE, &none) == 0 && closeEverything();
}

bool dropPrivileges() {
    return limitBoundingSet() && ::prctl(PR_CAP_AMBIENT, PR_CAP_AMBIENT_CLEAR_ALL, 0, 0, 0) == 0 &&
           keepNeededCapabilities() && ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0;
}

}  // namespace brimvault::cleaner
