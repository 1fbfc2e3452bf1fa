#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace brimvault::platform {

/// A connection to a program of this machine that runs with the administrator's rights. One thread at a time.
class ToolConnection {
public:
    virtual ~ToolConnection() = default;

    /// Does not wait. False when not all of it could be sent; the connection is then of no use.
    [[nodiscard]] virtual bool send(std::string_view bytes) = 0;
    /// What has come, or comes within the time; empty when nothing does. None once the other side has closed it.
    [[nodiscard]] virtual std::optional<std::string> receive(std::chrono::milliseconds patience) = 0;

    /// None where nobody can be met at the place, or somebody who is not the administrator. Does not wait.
    [[nodiscard]] static std::unique_ptr<ToolConnection> connect(const std::filesystem::path& place);
};

}  // namespace brimvault::platform
