#include "cleaner-tool/protocol/Protocol.h"

#include <algorithm>

namespace brimvault::cleaner {

namespace {

constexpr unsigned bitsOfByte = 8;

bool isKnown(unsigned char operation) {
    switch (static_cast<Operation>(operation)) {
        case Operation::removeFileAtPath:
        case Operation::removeToTrashFileAtPath:
        case Operation::keepFolderAtPath:
        case Operation::ready:
        case Operation::working:
        case Operation::done:
        case Operation::failed:
            return true;
    }
    return false;
}

}  // namespace

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
