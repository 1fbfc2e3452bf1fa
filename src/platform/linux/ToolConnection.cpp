#include "platform/ToolConnection.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace brimvault::platform {

namespace {

bool maySucceedLater() { return errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK; }

class LocalSocket final : public ToolConnection {
public:
    explicit LocalSocket(int descriptor) : descriptor_(descriptor) {}
    LocalSocket(const LocalSocket&) = delete;
    LocalSocket& operator=(const LocalSocket&) = delete;
    ~LocalSocket() override { ::close(descriptor_); }

    bool send(std::string_view bytes) override {
        return ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
    }

    std::optional<std::string> receive(std::chrono::milliseconds patience) override {
        pollfd event{descriptor_, POLLIN, 0};
        if (::poll(&event, 1, static_cast<int>(patience.count())) == 0) {
            return std::string();
        }
        std::array<char, 4096> bytes{};
        const ssize_t count = ::recv(descriptor_, bytes.data(), bytes.size(), 0);
        if (count > 0) {
            return std::string(bytes.data(), static_cast<std::size_t>(count));
        }
        return count < 0 && maySucceedLater() ? std::optional(std::string()) : std::nullopt;
    }

    // Who listened, not who serves now: the folder is the user's own, so that another program of the user's could wait
    // there under the name.
    [[nodiscard]] bool isPeerAdministrator() const {
        ucred peer{};
        socklen_t size = sizeof peer;
        return ::getsockopt(descriptor_, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == 0;
    }

private:
    const int descriptor_;
};

}  // namespace

std::unique_ptr<ToolConnection> ToolConnection::connect(const std::filesystem::path& place) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor < 0) {
        return nullptr;
    }
    auto socket = std::make_unique<LocalSocket>(descriptor);
    if (place.native().size() >= sizeof address.sun_path) {
        return nullptr;
    }
    std::memcpy(address.sun_path, place.c_str(), place.native().size());
    const auto* generic = reinterpret_cast<const sockaddr*>(&address);
    const bool met = ::connect(descriptor, generic, sizeof address) == 0 && socket->isPeerAdministrator();
    return met ? std::move(socket) : nullptr;
}

}  // namespace brimvault::platform
