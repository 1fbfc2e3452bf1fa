#include "cleaner-tool/ClientConnection.h"

#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "files/SystemCall.h"

namespace brimvault::cleaner {

std::size_t ClientConnection::receive(std::span<char> bytes) const {
    constexpr int noTimeout = -1;
    for (;;) {
        pollfd events[] = {{connection_.number(), POLLIN, 0}, {client_.application.descriptor(), POLLIN, 0}};
        if (::poll(events, 2, noTimeout) < 0 && !files::isTransient(errno)) {
            return 0;
        }
        if (events[1].revents != 0) {
            return 0;
        }
        const ssize_t count = receiveFromClient(bytes);
        if (count >= 0 || !files::isTransient(errno)) {
            return count > 0 ? static_cast<std::size_t>(count) : 0;
        }
    }
}

// One recvmsg never returns bytes of two senders. The control buffer has no room for passed descriptors: the kernel
// closes them.
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
    return sender.uid == client_.user && sender.pid == client_.application.id() ? count : 0;
}

ClientConnection::Sent ClientConnection::send(std::string_view bytes) const {
    const ssize_t sent = ::send(connection_.number(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent == static_cast<ssize_t>(bytes.size())) {
        return Sent::whole;
    }
    return sent < 0 && files::isTransient(errno) ? Sent::noRoom : Sent::broken;
}

ClientConnection::Event ClientConnection::waitFor(int work, std::chrono::milliseconds timeout) const {
    pollfd events[] = {
        {work, POLLIN, 0}, {client_.application.descriptor(), POLLIN, 0}, {connection_.number(), POLLRDHUP, 0}};
    const int count = ::poll(events, 3, static_cast<int>(timeout.count()));
    if (count < 0) {
        return files::isTransient(errno) ? Event::timeout : Event::end;
    }
    if (events[1].revents != 0 || events[2].revents != 0) {
        return Event::end;
    }
    return events[0].revents != 0 ? Event::workDone : Event::timeout;
}

}  // namespace brimvault::cleaner
