#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "files/NodeStatus.h"

namespace brimvault::cleaner {

// The wire protocol between the application and its root remover, over a Unix stream socket.
//
// A message is its length (four bytes, big-endian), then that many bytes: the first is the operation, the rest its
// content. The tool begins with `ready` once it has checked its peer. From then on the application sends one request at
// a time, and the tool sends `working` about once a second until it answers. Anything else ends the connection: neither
// side guesses what the other could have meant.

/// In bytes after the length field, the operation included. More than the longest path of any system (PATH_MAX).
inline constexpr std::size_t maxMessageLength = 8192;

enum class Operation : std::uint8_t {
    removeFileAtPath = 1,         ///< content: an absolute path. Answered with `done` or `failed`
    removeToTrashFileAtPath = 2,  ///< content: an absolute path. Answered with `done` and the new path, or `failed`
    /// Content: an absolute path without "." or ".." of a folder that is never to be removed from now on. Not answered
    keepFolderAtPath = 3,
    /// Content: which folder the item of the next request must lie in, as `identityText` has it. Not answered
    expectFolder = 4,
    ready = 16,    ///< content: the version
    working = 17,  ///< no content
    done = 18,
    failed = 19,  ///< no content
};

/// The protocol's version; both sides must have the same.
inline constexpr char version = '2';

/// A folder's identity as text: device, inode, and the time of birth in nanoseconds where the file system has one.
[[nodiscard]] std::string identityText(const files::FileIdentity& identity);
/// None for anything else.
[[nodiscard]] std::optional<files::FileIdentity> identityIn(std::string_view text);

struct Message {
    Operation operation = Operation::failed;
    std::string content;
};

/// The message as bytes; none where the content is too long.
[[nodiscard]] std::optional<std::string> encode(Operation operation, std::string_view content = {});

/// Parses messages from bytes that arrive in pieces of any length. Buffers one message at most. One thread.
class MessageReader {
public:
    /// Consumes bytes up to the end of a message, and returns how many: all of them where no message ends in them, 0
    /// while a message waits to be taken, and 0 once the stream is broken.
    std::size_t feed(std::span<const char> bytes);
    /// The message that is complete, if one is; makes room for the next.
    [[nodiscard]] std::optional<Message> take();
    /// What was fed is no message, nor the beginning of one. It stays so.
    [[nodiscard]] bool isBroken() const { return broken_; }

private:
    static constexpr std::size_t prefix = 4;

    void readLength();
    [[nodiscard]] bool isComplete() const { return held_ >= prefix && held_ == prefix + length_; }

    std::array<char, prefix + maxMessageLength> bytes_{};
    std::size_t held_ = 0;
    std::size_t length_ = 0;  ///< of the message under way, once its prefix is complete
    bool broken_ = false;
};

}  // namespace brimvault::cleaner
