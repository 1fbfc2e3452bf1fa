#pragma once

#include <poll.h>

#include <chrono>
#include <span>
#include <stop_token>

#include "files/FileDescriptor.h"

namespace brimvault::platform {

/// A file descriptor (eventfd) that becomes readable when a stop is requested, and stays so: poll(2) can then wait for
/// the stop beside other descriptors.
class StopEvent {
public:
    explicit StopEvent(const std::stop_token& stop);

    /// False where the process has no descriptor left: the stop could not be waited for.
    [[nodiscard]] bool isOpen() const { return event_.isOpen(); }
    [[nodiscard]] int descriptor() const { return event_.number(); }

private:
    struct Signal {
        int descriptor;
        void operator()() const noexcept;
    };
    files::FileDescriptor event_;
    std::stop_callback<Signal> callback_;
};

/// Blocks until one of the events has come, or until the deadline; their `revents` tell which. Descriptors below 0 are
/// ignored, as by poll(2).
void waitForAny(std::span<pollfd> events, std::chrono::steady_clock::time_point deadline);

}  // namespace brimvault::platform
