#pragma once

#include <sys/types.h>

#include <chrono>
#include <span>
#include <string_view>

#include "cleaner-tool/ApplicationProcess.h"
#include "files/FileDescriptor.h"

namespace brimvault::cleaner {

/// The only process that may send requests.
struct Client {
    uid_t user;
    const ApplicationProcess& application;
};

/// The connection to the client. It ends when the client closes it, when the application ends, and when another process
/// sends anything over it. One thread.
class ClientConnection {
public:
    /// The socket delivers the sender of each message (SO_PASSCRED). The application outlives this object.
    ClientConnection(files::FileDescriptor connection, const Client& client)
        : connection_(std::move(connection)), client_(client) {}

    [[nodiscard]] int descriptor() const { return connection_.number(); }
    /// Waits for bytes and returns how many were received; 0 at the end.
    [[nodiscard]] std::size_t receive(std::span<char> bytes) const;

    enum class Sent { whole, noRoom, broken };
    /// Does not block: the few bytes of an answer fit into the buffer of a socket whose peer reads.
    [[nodiscard]] Sent send(std::string_view bytes) const;

    enum class Event { workDone, timeout, end };
    /// Waits until the descriptor (if not below 0) is readable or its other end is closed. What the client sends
    /// meanwhile stays in the socket.
    [[nodiscard]] Event waitFor(int work, std::chrono::milliseconds timeout) const;
    [[nodiscard]] bool hasEnded() const { return waitFor(-1, {}) == Event::end; }

private:
    [[nodiscard]] ssize_t receiveFromClient(std::span<char> bytes) const;

    files::FileDescriptor connection_;
    Client client_;
};

}  // namespace brimvault::cleaner
