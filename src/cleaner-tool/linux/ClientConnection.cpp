#include "cleaner-tool/ClientConnection.h"

#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace brimvault::cleaner {

namespace {

bool maySucceedLater() { return errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK; }

}  // namespace

std::size_t ClientConnection::receive(std::span<char> bytes) const {
    constexpr int withoutEnd = -1;
    for (;;) {
        pollfd events[] = {{connection_.number(), POLLIN, 0}, {client_.application.descriptor(), POLLIN, 0}};
        if (::poll(events, 2, withoutEnd) < 0 && !maySucceedLater()) {
            return 0;
        }
        if (events[1].revents != 0) {
            return 0;
        }
        const ssize_t count = receiveFromClient(bytes);
        if (count >= 0 || !maySucceedLater()) {
            return count > 0 ? static_cast<std::size_t>(count) : 0;
        }
    }
}

// Bytes of different senders never come together. Descriptors that come along find no room and are closed.
ssize_t ClientConnection::receiveFromClient(std::span<char> bytes) const {
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(ucred))> control{};
    iovec content{bytes.data(), bytes.size()};
    msghdr message{};
    message.msg_iov = &content;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    const ssize_t count = ::recvmsg(connection_.number(), &message, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
    if (count <= 0) {
        return count;
    }
    const cmsghdr* header = CMSG_FIRSTHDR(&message);
    ucred sender{};
    if (header == nullptr || header->cmsg_level != SOL_SOCKET || header->cmsg_type != SCM_CREDENTIALS ||
        header->cmsg_len != CMSG_LEN(sizeof sender) || (message.msg_flags & MSG_CTRUNC) != 0) {
        return 0;
    }
    std::memcpy(&sender, CMSG_DATA(header), sizeof sender);
    return sender.uid == client_.user && sender.pid == client_.application.number() ? count : 0;
}

ClientConnection::Sent ClientConnection::send(std::string_view bytes) const {
    const ssize_t sent = ::send(connection_.number(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent == static_cast<ssize_t>(bytes.size())) {
        return Sent::whole;
    }
    return sent < 0 && maySucceedLater() ? Sent::noRoom : Sent::broken;
}

ClientConnection::Event ClientConnection::waitFor(int work, std::chrono::milliseconds patience) const {
    pollfd events[] = {
        {work, POLLIN, 0}, {client_.application.descriptor(), POLLIN, 0}, {connection_.number(), POLLRDHUP, 0}};
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
