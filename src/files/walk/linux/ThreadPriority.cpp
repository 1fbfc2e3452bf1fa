#include "files/walk/ThreadPriority.h"

#include <sys/resource.h>
#include <unistd.h>

namespace brimvault::files {

namespace {

constexpr int niceness = 5;  // a third of the CPU time that a thread with the default of 0 gets

}  // namespace

// On Linux each thread has a niceness of its own, whatever POSIX says of processes.
void lowerThreadPriority() {
    const auto thread = static_cast<id_t>(::gettid());
    if (::getpriority(PRIO_PROCESS, thread) < niceness) {
        (void)::setpriority(PRIO_PROCESS, thread, niceness);
    }
}

}  // namespace brimvault::files
