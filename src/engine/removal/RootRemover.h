#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>

#include "cleaner-tool/protocol/Protocol.h"
#include "platform/ToolConnection.h"

namespace brimvault::engine {

/// A root remover that the process is connected with. One thread at a time; the requests block until they are answered.
class RootRemover {
public:
    /// A tool at work gives a sign of life every second; one that is silent for so long has stopped.
    static constexpr std::chrono::seconds longestSilence{5};

    explicit RootRemover(std::unique_ptr<platform::ToolConnection> connection) : connection_(std::move(connection)) {}

    [[nodiscard]] bool isConnected();
    /// Whether the tool has told that it is ready, and is of this program's version.
    [[nodiscard]] bool respondsToRemoveFileAtPath();
    /// The folder is kept from now on, whatever is asked for.
    void keepFolderAtPath(const std::filesystem::path& folder);

    /// YES when nothing is left under the path. NO also when the tool does not answer; the connection is then over.
    [[nodiscard]] bool removeFileAtPath(const std::filesystem::path& path);
    /// Where in the trash the item is now; none when it was not moved.
    [[nodiscard]] std::optional<std::filesystem::path> removeToTrashFileAtPath(const std::filesystem::path& path);

private:
    [[nodiscard]] std::optional<cleaner::Message> ask(cleaner::Operation operation, const std::filesystem::path& path);
    bool send(cleaner::Operation operation, const std::filesystem::path& path);
    [[nodiscard]] std::optional<cleaner::Message> nextMessage(std::chrono::milliseconds patience);
    void takeIn(std::chrono::milliseconds patience);

    std::unique_ptr<platform::ToolConnection> connection_;  ///< none once it is over
    std::string arrived_;                                   ///< and not read yet
    cleaner::MessageReader reader_;
    bool isReady_ = false;
};

}  // namespace brimvault::engine
