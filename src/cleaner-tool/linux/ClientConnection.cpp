#include "cleaner-tool/ClientConnection.h"

#include <poll.h>
#include <sys/socket.h>

#include <cerrno>

namespace brimvault::cleaner {

namespace {

bool maySucceedLater() { return errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK; }

}  // namespace

std::size_t ClientConnection::receive(std::span<char> bytes) const {
    constexpr int withoutEnd = -1;
    for (;;) {
        pollfd events[] = {{connection_.number(), POLLIN, 0}, {application_.descriptor(), POLLIN, 0}};
        if (::poll(events, 2, withoutEnd) < 0 && !maySucceedLater()) {
            return 0;
        }
        if (events[1].revents != 0) {
            return 0;
        }
        const ssize_t count = ::recv(connection_.number(), bytes.data(), bytes.size(), MSG_DONTWAIT);
        if (count >= 0 || !maySucceedLater()) {
            return count > 0 ? static_cast<std::size_t>(count) : 0;
        }
    }
}

ClientConnection::Sent ClientConnection::send(std::string_view bytes) const {
    const ssize_t sent = ::send(connection_.number(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent == static_cast<ssize_t>(bytes.size())) {
        return Sent::whole;
    }
    return sent < 0 && maySucceedLater() ? Sent::noRoom : Sent::broken;
}

ClientConnection::Event ClientConnection::waitFor(int work, std::chrono::milliseconds patience) const {
    pollfd events[] = {{work, POLLIN, 0}, {application_.descriptor(), POLLIN, 0}, {connection_.number(), POLLRDHUP, 0}};
    const int count = ::poll(events, 3, static_cast<int>(patience.count()));
    if (count < 0) {
        return maySucceedLater() ? Event::timeOut : Event::end;
    }
    if (events[1].revents != 0 || events[2].revents != 0) {
        return Event::end;
    }
    return events[0].revents != 0 ? Event::workDone : Event::timeOut;
}

}  // namespace brimvault::cleaner
