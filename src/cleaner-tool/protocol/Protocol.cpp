#include "cleaner-tool/protocol/Protocol.h"

#include <algorithm>
#include <charconv>
#include <chrono>

namespace brimvault::cleaner {

namespace {

using Nanoseconds = std::chrono::nanoseconds;

constexpr unsigned bitsOfByte = 8;

bool isKnown(unsigned char operation) {
    switch (static_cast<Operation>(operation)) {
        case Operation::removeFileAtPath:
        case Operation::removeToTrashFileAtPath:
        case Operation::keepFolderAtPath:
        case Operation::expectFolder:
        case Operation::ready:
        case Operation::working:
        case Operation::done:
        case Operation::failed:
            return true;
    }
    return false;
}

// Takes the number that the text begins with, and the character after it, from the text. 0 if there is none.
template <typename Number>
Number takeNumber(std::string_view& text) {
    Number number{};
    const auto* const end = std::from_chars(text.data(), text.data() + text.size(), number).ptr;
    text.remove_prefix(std::min(static_cast<std::size_t>(end - text.data()) + 1, text.size()));
    return number;
}

}  // namespace

std::string identityText(const files::FileIdentity& identity) {
    const auto text = std::to_string(identity.device) + " " + std::to_string(identity.inode);
    return identity.born ? text + " " + std::to_string(Nanoseconds(identity.born->time_since_epoch()).count()) : text;
}

std::optional<files::FileIdentity> identityIn(std::string_view text) {
    auto rest = text;
    files::FileIdentity identity;
    identity.device = takeNumber<std::uint64_t>(rest);
    identity.inode = takeNumber<std::uint64_t>(rest);
    if (!rest.empty()) {
        identity.born.emplace(Nanoseconds(takeNumber<std::int64_t>(rest)));
    }
    return identityText(identity) == text ? std::optional(identity) : std::nullopt;
}

std::optional<std::string> encode(Operation operation, std::string_view content) {
    const std::size_t length = 1 + content.size();
    if (length > maxMessageLength) {
        return std::nullopt;
    }
    std::string bytes;
    for (unsigned place = 4; place > 0; --place) {
        bytes.push_back(static_cast<char>(static_cast<unsigned char>(length >> (place - 1) * bitsOfByte)));
    }
    bytes.push_back(static_cast<char>(operation));
    return bytes.append(content);
}

// Never consumes bytes behind the message under way: the next message stays with the caller.
std::size_t MessageReader::feed(std::span<const char> bytes) {
    std::size_t taken = 0;
    while (taken < bytes.size() && !broken_ && !isComplete()) {
        const std::size_t wanted = held_ < prefix ? prefix - held_ : prefix + length_ - held_;
        const std::size_t count = std::min(wanted, bytes.size() - taken);
        std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(taken), count,
                    bytes_.begin() + static_cast<std::ptrdiff_t>(held_));
        held_ += count;
        taken += count;
        if (held_ == prefix) {
            readLength();
        } else if (held_ > prefix && !isKnown(static_cast<unsigned char>(bytes_[prefix]))) {
            broken_ = true;
        }
    }
    return taken;
}

void MessageReader::readLength() {
    length_ = 0;
    for (std::size_t place = 0; place < prefix; ++place) {
        length_ = (length_ << bitsOfByte) | static_cast<unsigned char>(bytes_[place]);
    }
    broken_ = length_ == 0 || length_ > maxMessageLength;
}

std::optional<Message> MessageReader::take() {
    if (broken_ || !isComplete()) {
        return std::nullopt;
    }
    const auto* content = bytes_.data() + prefix + 1;
    Message message{static_cast<Operation>(bytes_[prefix]), std::string(content, length_ - 1)};
    held_ = 0;
    length_ = 0;
    return message;
}

}  // namespace brimvault::cleaner
