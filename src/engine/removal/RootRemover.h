#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>

#include "cleaner-tool/protocol/Protocol.h"
#include "platform/ToolConnection.h"

namespace brimvault::engine {

/// The client's end of a connection with a root remover. One thread at a time; requests block until they are answered.
class RootRemover {
public:
    /// The timeout between messages: a tool at work sends a heartbeat every second.
    static constexpr std::chrono::seconds maxSilence{5};

    explicit RootRemover(std::unique_ptr<platform::ToolConnection> connection) : connection_(std::move(connection)) {}

    [[nodiscard]] bool isConnected();
    /// Whether the tool has said that it is ready, and speaks this program's version of the protocol.
    [[nodiscard]] bool respondsToRemoveFileAtPath();
    /// From now on the tool refuses to remove the folder.
    void keepFolderAtPath(const std::filesystem::path& folder);

    /// True if nothing is left under the path. False also if the tool does not answer; the connection is then closed.
    /// With a folder given, the tool refuses unless the path leads to an item of that very one.
    [[nodiscard]] bool removeFileAtPath(const std::filesystem::path& path,
                                        const std::optional<files::FileIdentity>& folder = {});
    /// Where in the trash the item is now; none if it was not moved.
    [[nodiscard]] std::optional<std::filesystem::path> removeToTrashFileAtPath(const std::filesystem::path& path);

private:
    [[nodiscard]] std::optional<cleaner::Message> ask(cleaner::Operation operation, const std::filesystem::path& path);
    bool send(cleaner::Operation operation, const std::filesystem::path& path);
    [[nodiscard]] std::optional<cleaner::Message> nextMessage(std::chrono::milliseconds timeout);
    void receive(std::chrono::milliseconds timeout);

    std::unique_ptr<platform::ToolConnection> connection_;  ///< null once it is closed
    std::string arrived_;                                   ///< bytes received and not parsed yet
    cleaner::MessageReader reader_;
    bool isReady_ = false;
};

}  // namespace brimvault::engine
