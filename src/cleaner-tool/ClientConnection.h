#pragma once

#include <sys/types.h>

#include <chrono>
#include <span>
#include <string_view>

#include "cleaner-tool/ApplicationProcess.h"
#include "files/FileDescriptor.h"

namespace brimvault::cleaner {

/// Who may speak with the tool.
struct Client {
    uid_t user;
    const ApplicationProcess& application;
};

/// The connection to the client. It ends when the client closes it, when the application ends, and when anything comes
/// over it from another process. One thread.
class ClientConnection {
public:
    /// A connection that tells of each message who has sent it. The application outlives it.
    ClientConnection(files::FileDescriptor connection, const Client& client)
        : connection_(std::move(connection)), client_(client) {}

    [[nodiscard]] int descriptor() const { return connection_.number(); }
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
    [[nodiscard]] ssize_t receiveFromClient(std::span<char> bytes) const;

    files::FileDescriptor connection_;
    Client client_;
};

}  // namespace brimvault::cleaner
