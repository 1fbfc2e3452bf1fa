#include "files/walk/BackgroundThread.h"

#include <sys/resource.h>
#include <unistd.h>

namespace brimvault::files {

namespace {

constexpr int niceness = 5;  // a third of the share that a thread with the usual 0 is given

}  // namespace

// On Linux each thread has a niceness of its own, whatever POSIX says of processes.
void standBack() {
    const auto thread = static_cast<id_t>(::gettid());
    if (::getpriority(PRIO_PROCESS, thread) < niceness) {
        (void)::setpriority(PRIO_PROCESS, thread, niceness);
    }
}

}  // namespace brimvault::files
