// A stream gives the same messages however it is split, and encoding the messages gives the stream again.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>

#include "cleaner-tool/protocol/Protocol.h"

namespace {

using namespace brimvault::cleaner;

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

struct Reading {
    std::string messages;   ///< encoded again
    std::size_t taken = 0;  ///< bytes up to the end of the last message
    bool broken = false;
    bool operator==(const Reading&) const = default;
};

// Feeds the stream in pieces, whose lengths are the bytes of `lengths`, used in a circle.
Reading read(std::span<const char> stream, std::span<const std::uint8_t> lengths) {
    MessageReader reader;
    Reading reading;
    std::size_t fed = 0;
    for (std::size_t turn = 0; fed < stream.size(); ++turn) {
        const std::size_t wanted = lengths.empty() ? stream.size() : 1U + lengths[turn % lengths.size()];
        const auto piece = stream.subspan(fed, std::min(wanted, stream.size() - fed));
        const std::size_t taken = reader.feed(piece);
        require(taken <= piece.size());
        fed += taken;
        if (const auto message = reader.take()) {
            const auto again = encode(message->operation, message->content);
            require(again.has_value() && again->size() <= 4 + maxMessageLength);
            reading.messages += *again;
            reading.taken = fed;
            require(!reader.take() && !reader.isBroken());
        } else if (taken < piece.size()) {
            require(reader.isBroken() && reader.feed(piece) == 0);
            break;
        }
    }
    reading.broken = reader.isBroken();
    require(std::equal(reading.messages.begin(), reading.messages.end(), stream.begin(),
                       stream.begin() + static_cast<std::ptrdiff_t>(reading.taken)));
    return reading;
}

}  // namespace

// The first byte is the number of piece lengths that follow it; the rest is the stream.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span<const std::uint8_t> input(data, size);
    const std::size_t count = input.empty() ? 0 : std::min<std::size_t>(input[0], size - 1);
    const auto lengths = input.subspan(std::min<std::size_t>(1, size), count);
    const std::string bytes(input.begin() + static_cast<std::ptrdiff_t>(std::min(size, count + 1)), input.end());
    const auto whole = read(bytes, {});
    constexpr std::uint8_t oneByte[] = {0};
    require(read(bytes, oneByte) == whole);
    require(read(bytes, lengths) == whole);
    return 0;
}
