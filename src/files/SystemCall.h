#pragma once

#include <cerrno>

namespace brimvault::files {

/// Makes a system call again that a signal interrupted, a few times: a file system that answers so for ever does not
/// hold the caller up. Not for closing, which is done even when it is interrupted.
template <typename Call>
auto uninterrupted(Call call) {
    constexpr int mostTimes = 8;
    auto answer = call();
    for (int times = 1; answer < 0 && errno == EINTR && times < mostTimes; ++times) {
        answer = call();
    }
    return answer;
}

/// Whether a call with this errno failed for now only: a signal interrupted it, or it would have blocked.
inline bool isTransient(int code) { return code == EINTR || code == EAGAIN || code == EWOULDBLOCK; }

}  // namespace brimvault::files
