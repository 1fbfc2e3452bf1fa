#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace brimvault::platform {

/// A connection to a root process on this machine, over a Unix socket. One thread at a time.
class ToolConnection {
public:
    virtual ~ToolConnection() = default;

    /// Does not block. False when not all bytes could be sent; the connection is then useless.
    [[nodiscard]] virtual bool send(std::string_view bytes) = 0;
    /// What has been received, or is within the timeout; empty when nothing is. None once the peer has closed it.
    [[nodiscard]] virtual std::optional<std::string> receive(std::chrono::milliseconds timeout) = 0;

    /// Null if nothing listens at the path or the peer is not root (SO_PEERCRED). Does not block.
    [[nodiscard]] static std::unique_ptr<ToolConnection> connect(const std::filesystem::path& socket);
};

}  // namespace brimvault::platform
