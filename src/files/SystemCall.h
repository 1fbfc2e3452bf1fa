#pragma once

#include <cerrno>

namespace brimvault::files {

/// Retries a system call on EINTR, at most 8 times, so that a file system that keeps returning EINTR cannot hang us.
/// Not for `close`, which has taken effect even when it is interrupted.
template <typename Call>
auto uninterrupted(Call call) {
    constexpr int maxTimes = 8;
    auto answer = call();
    for (int times = 1; answer < 0 && errno == EINTR && times < maxTimes; ++times) {
        answer = call();
    }
    return answer;
}

/// Whether a call with this errno failed for now only: a signal interrupted it, or it would have blocked.
inline bool isTransient(int code) { return code == EINTR || code == EAGAIN || code == EWOULDBLOCK; }

}  // namespace brimvault::files
