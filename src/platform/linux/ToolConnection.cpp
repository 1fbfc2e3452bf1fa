#include "platform/ToolConnection.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "files/SystemCall.h"

namespace brimvault::platform {

namespace {

class LocalSocket final : public ToolConnection {
public:
    explicit LocalSocket(int descriptor) : descriptor_(descriptor) {}
    LocalSocket(const LocalSocket&) = delete;
    LocalSocket& operator=(const LocalSocket&) = delete;
    ~LocalSocket() override { ::close(descriptor_); }

    bool send(std::string_view bytes) override {
        return ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
    }

    std::optional<std::string> receive(std::chrono::milliseconds timeout) override {
        pollfd event{descriptor_, POLLIN, 0};
        if (::poll(&event, 1, static_cast<int>(timeout.count())) == 0) {
            return std::string();
        }
        std::array<char, 4096> bytes{};
        const ssize_t count = ::recv(descriptor_, bytes.data(), bytes.size(), 0);
        if (count > 0) {
            return std::string(bytes.data(), static_cast<std::size_t>(count));
        }
        return count < 0 && files::isTransient(errno) ? std::optional(std::string()) : std::nullopt;
    }

    // SO_PEERCRED names the process that called listen(): a socket on which a program of the user's listens is not the
    // tool's.
    [[nodiscard]] bool isPeerRoot() const {
        ucred peer{};
        socklen_t size = sizeof peer;
        return ::getsockopt(descriptor_, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == 0;
    }

private:
    const int descriptor_;
};

}  // namespace

std::unique_ptr<ToolConnection> ToolConnection::connect(const std::filesystem::path& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor < 0) {
        return nullptr;
    }
    auto socket = std::make_unique<LocalSocket>(descriptor);
    if (path.native().size() >= sizeof address.sun_path) {
        return nullptr;
    }
    std::memcpy(address.sun_path, path.c_str(), path.native().size());
    const auto* generic = reinterpret_cast<const sockaddr*>(&address);
    const bool isConnected = ::connect(descriptor, generic, sizeof address) == 0 && socket->isPeerRoot();
    return isConnected ? std::move(socket) : nullptr;
}

}  // namespace brimvault::platform
