#include "cleaner-tool/ApplicationProcess.h"

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <thread>

namespace brimvault::cleaner {

namespace {

constexpr std::chrono::milliseconds orderlyEndTimeout{500};

}  // namespace

// pkexec executes the tool in its own process, so the application is the tool's parent. A process whose parent ends
// gets another parent: if getppid() still returns the ID after the pidfd was opened, the pidfd is that of the parent.
std::optional<ApplicationProcess> ApplicationProcess::ofParent(pid_t id) {
    ApplicationProcess process(id, files::FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, id, 0U))));
    if (!process.descriptor_.isOpen() || ::getppid() != id || process.hasEnded()) {
        return std::nullopt;
    }
    return process;
}

void ApplicationProcess::exitAfterItEnds() const {
    std::thread([descriptor = descriptor()] {
        constexpr int noTimeout = -1;
        pollfd ended{descriptor, POLLIN, 0};
        while (::poll(&ended, 1, noTimeout) < 0 && errno == EINTR) {
        }
        std::this_thread::sleep_for(orderlyEndTimeout);
        ::_exit(EXIT_FAILURE);
    }).detach();
}

bool ApplicationProcess::hasEnded() const {
    pollfd ended{descriptor(), POLLIN, 0};
    return ::poll(&ended, 1, 0) != 0;  // true also after an error
}

}  // namespace brimvault::cleaner
