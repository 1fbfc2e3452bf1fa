#include "cleaner-tool/ApplicationProcess.h"

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace brimvault::cleaner {

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

bool ApplicationProcess::hasEnded() const {
    pollfd ended{descriptor_, POLLIN, 0};
    return ::poll(&ended, 1, 0) != 0;  // also when it cannot be told
}

}  // namespace brimvault::cleaner
