#pragma once

#include <sys/resource.h>

namespace brimvault::trial {

/// How often a thread of this process has been woken so far, threads that have ended among them: voluntary context
/// switches, one for each time that a thread had to wait. A thread that loses its CPU to another is not counted. Any
/// thread.
inline long wakeUps() {
    rusage usage{};
    (void)::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_nvcsw;
}

}  // namespace brimvault::trial
