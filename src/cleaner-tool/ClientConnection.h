#pragma once

#include <chrono>
#include <span>
#include <string_view>

#include "cleaner-tool/ApplicationProcess.h"
#include "cleaner-tool/Descriptor.h"

namespace brimvault::cleaner {

/// The connection to the client. It ends when the client closes it, and when the application ends. One thread.
class ClientConnection {
public:
    /// The application outlives it.
    ClientConnection(Descriptor connection, const ApplicationProcess& application)
        : connection_(std::move(connection)), application_(application) {}

    /// Waits for bytes, and answers how many have come; 0 at the end.
    [[nodiscard]] std::size_t receive(std::span<char> bytes) const;

    enum class Sent { whole, noRoom, broken };
    /// At once or not at all, as is right for a few bytes to somebody who is waiting for them.
    [[nodiscard]] Sent send(std::string_view bytes) const;

    enum class Event { workDone, timeOut, end };
    /// Waits for the descriptor, if any, to become readable or closed at its other side. What the client sends
    /// meanwhile stays.
    [[nodiscard]] Event waitFor(int work, std::chrono::milliseconds patience) const;
    [[nodiscard]] bool hasEnded() const { return waitFor(-1, {}) == Event::end; }

private:
    Descriptor connection_;
    const ApplicationProcess& application_;
};

}  // namespace brimvault::cleaner
