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

constexpr std::chrono::milliseconds timeToEndInOrder{500};

}  // namespace

// What gives the tool its rights becomes the tool, so that the application is its parent. A process keeps its parent
// until that ends, and is then given to another one: if the parent still has the number after the descriptor was
// opened, the descriptor is that of the parent.
std::optional<ApplicationProcess> ApplicationProcess::ofParent(pid_t number) {
    const long descriptor = ::syscall(SYS_pidfd_open, number, 0U);
    if (descriptor < 0) {
        return std::nullopt;
    }
    ApplicationProcess process(number, static_cast<int>(descriptor));
    if (::getppid() != number || process.hasEnded()) {
        return std::nullopt;
    }
    return process;
}

ApplicationProcess::~ApplicationProcess() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

void ApplicationProcess::endWithIt() const {
    std::thread([descriptor = descriptor_] {
        constexpr int withoutEnd = -1;
        pollfd ended{descriptor, POLLIN, 0};
        while (::poll(&ended, 1, withoutEnd) < 0 && errno == EINTR) {
        }
        std::this_thread::sleep_for(timeToEndInOrder);
        ::_exit(EXIT_FAILURE);
    }).detach();
}

bool ApplicationProcess::hasEnded() const {
    pollfd ended{descriptor_, POLLIN, 0};
    return ::poll(&ended, 1, 0) != 0;  // also when it cannot be told
}

}  // namespace brimvault::cleaner
