#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace brimvault::cleaner {

// How the application and its root remover speak with each other, over a stream between two processes of one machine.
//
// Everything is a message: its length (four bytes, the most significant first), and then so many bytes, of which the
// first is the operation and the rest its content. The tool speaks first, with `ready`, once it knows whom it speaks
// with. From then on the application asks, one request at a time, and the tool sends `working` about once a second
// until it answers. Anything else ends the connection: neither side guesses what the other could have meant.

/// Bytes after the length, the operation among them. Paths longer than this are refused by every system.
inline constexpr std::size_t maxMessageLength = 8192;

enum class Operation : std::uint8_t {
    removeFileAtPath = 1,         ///< content: an absolute path. Answered with `done` or `failed`
    removeToTrashFileAtPath = 2,  ///< content: an absolute path. Answered with `done` and the new path, or `failed`
    /// Content: an absolute path without "." or "..", whose folder is never to be removed from now on. Not answered
    keepFolderAtPath = 3,
    ready = 16,    ///< content: the version
    working = 17,  ///< no content
    done = 18,
    failed = 19,  ///< no content
};

/// Which both sides must be of.
inline constexpr char version = '1';

struct Message {
    Operation operation = Operation::failed;
    std::string content;
};

/// The bytes to send; none where the content is too long.
[[nodiscard]] std::optional<std::string> encode(Operation operation, std::string_view content = {});

/// Makes messages from bytes as they come, in pieces of any length. What it holds is never more than one message.
/// One thread.
class MessageReader {
public:
    /// Takes bytes in up to the end of a message, and answers how many; all of them where none ends in them. None where
    /// a message waits to be taken, nor once what has come can be no message.
    std::size_t feed(std::span<const char> bytes);
    /// The message that has come to its end; its place is free for the next.
    [[nodiscard]] std::optional<Message> take();
    /// What has come is no message, nor the beginning of one. It stays so.
    [[nodiscard]] bool isBroken() const { return broken_; }

private:
    static constexpr std::size_t prefix = 4;

    void readLength();
    [[nodiscard]] bool isComplete() const { return held_ >= prefix && held_ == prefix + length_; }

    std::array<char, prefix + maxMessageLength> bytes_{};
    std::size_t held_ = 0;
    std::size_t length_ = 0;  ///< once the prefix is there
    bool broken_ = false;
};

}  // namespace brimvault::cleaner
