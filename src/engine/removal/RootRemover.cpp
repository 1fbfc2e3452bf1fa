#include "engine/removal/RootRemover.h"

#include "files/removal/Remove.h"

namespace brimvault::engine {

using cleaner::Operation;

bool RootRemover::isConnected() {
    if (connection_) {
        receive({});
    }
    return connection_ != nullptr;
}

bool RootRemover::respondsToRemoveFileAtPath() {
    if (!isReady_) {
        const auto message = nextMessage({});
        const bool isOfVersion =
            message && message->operation == Operation::ready && message->content == std::string(1, cleaner::version);
        if (message && !isOfVersion) {
            connection_.reset();
        }
        isReady_ = isOfVersion;
    }
    return isReady_ && connection_;
}

// The tool accepts normalized paths only: without a trailing slash.
void RootRemover::keepFolderAtPath(const std::filesystem::path& folder) {
    const auto normal = folder.lexically_normal();
    const auto plain = normal.has_filename() ? normal : normal.parent_path();
    if (files::isPlainAbsolute(plain)) {
        (void)send(Operation::keepFolderAtPath, plain);
    }
}

bool RootRemover::removeFileAtPath(const std::filesystem::path& path,
                                   const std::optional<files::FileIdentity>& folder) {
    if (folder && !(respondsToRemoveFileAtPath() && send(Operation::expectFolder, cleaner::identityText(*folder)))) {
        return false;
    }
    return ask(Operation::removeFileAtPath, path).has_value();
}

std::optional<std::filesystem::path> RootRemover::removeToTrashFileAtPath(const std::filesystem::path& path) {
    const auto answer = ask(Operation::removeToTrashFileAtPath, path);
    return answer ? std::optional<std::filesystem::path>(answer->content) : std::nullopt;
}

// None unless the request succeeded. Anything but an answer or a heartbeat closes the connection: a late answer would
// be taken for that to the next request.
std::optional<cleaner::Message> RootRemover::ask(Operation operation, const std::filesystem::path& path) {
    if (!respondsToRemoveFileAtPath() || !send(operation, path)) {
        return std::nullopt;
    }
    auto message = nextMessage(maxSilence);
    while (message && message->operation == Operation::working) {
        message = nextMessage(maxSilence);
    }
    if (message && message->operation == Operation::done) {
        return message;
    }
    if (!message || message->operation != Operation::failed) {
        connection_.reset();
    }
    return std::nullopt;
}

// A path that is too long to be encoded does not exist on this system.
bool RootRemover::send(Operation operation, const std::filesystem::path& path) {
    const auto bytes = cleaner::encode(operation, path.native());
    if (!bytes || !connection_) {
        return false;
    }
    if (!connection_->send(*bytes)) {
        connection_.reset();
    }
    return connection_ != nullptr;
}

std::optional<cleaner::Message> RootRemover::nextMessage(std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        arrived_.erase(0, reader_.feed(arrived_));
        if (reader_.isBroken()) {
            connection_.reset();
        }
        if (auto message = reader_.take()) {
            return message;
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        const auto before = arrived_.size();
        if (connection_) {
            receive(std::max(left, std::chrono::milliseconds::zero()));
        }
        if (!connection_ || (arrived_.size() == before && left.count() <= 0)) {
            return std::nullopt;
        }
    }
}

void RootRemover::receive(std::chrono::milliseconds timeout) {
    const auto bytes = connection_->receive(timeout);
    if (bytes) {
        arrived_ += *bytes;
    } else {
        connection_.reset();
    }
}

}  // namespace brimvault::engine
