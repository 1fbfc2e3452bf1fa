#include "platform/linux/StopEvent.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <limits>

namespace brimvault::platform {

StopEvent::StopEvent(const std::stop_token& stop)
    : event_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), callback_(stop, Signal{event_.number()}) {}

void StopEvent::Signal::operator()() const noexcept {
    constexpr std::uint64_t one = 1;
    (void)!::write(descriptor, &one, sizeof one);
}

void waitForAny(std::span<pollfd> events, std::chrono::steady_clock::time_point deadline) {
    constexpr std::chrono::milliseconds maxTimeout{std::numeric_limits<int>::max()};
    int found = -1;
    do {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        const auto timeout = std::clamp(left, std::chrono::milliseconds(0), maxTimeout);
        found = ::poll(events.data(), events.size(), static_cast<int>(timeout.count()));
    } while (found < 0 && errno == EINTR);
}

}  // namespace brimvault::platform
