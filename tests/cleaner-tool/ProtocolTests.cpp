#include "cleaner-tool/protocol/Protocol.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <vector>

namespace brimvault::tests {

using namespace cleaner;

namespace {

static_assert(sizeof(MessageReader) < maxMessageLength + 64, "it holds one message and nothing else");

constexpr std::size_t lengthSize = 4;
constexpr unsigned char operations[] = {1, 2, 3, 16, 17, 18, 19};

struct Found {
    int operation;
    std::string content;
    std::size_t end;  ///< bytes of the stream up to where the message ended
    bool operator==(const Found&) const = default;
};

void PrintTo(const Found& found, std::ostream* out) {
    *out << "operation " << found.operation << " of " << found.content.size() << " bytes, up to " << found.end;
}

struct Reading {
    std::vector<Found> messages;
    bool broken = false;
};

unsigned byteAt(const std::string& stream, std::size_t place) { return static_cast<unsigned char>(stream.at(place)); }

// Decodes a whole stream by the format alone, independently of the reader.
Reading expected(const std::string& stream) {
    Reading reading;
    std::size_t start = 0;
    while (stream.size() - start >= lengthSize) {
        const std::size_t length = byteAt(stream, start) * 0x1000000UL + byteAt(stream, start + 1) * 0x10000UL +
                                   byteAt(stream, start + 2) * 0x100UL + byteAt(stream, start + 3);
        const std::size_t left = stream.size() - start - lengthSize;
        const bool hasOperation = left > 0;
        const unsigned operation = hasOperation ? byteAt(stream, start + lengthSize) : operations[0];
        if (length == 0 || length > 8192 || std::ranges::count(operations, operation) == 0) {
            reading.broken = true;
            return reading;
        }
        if (left < length) {
            return reading;
        }
        const std::size_t end = start + lengthSize + length;
        reading.messages.push_back(
            {static_cast<int>(operation), stream.substr(start + lengthSize + 1, length - 1), end});
        start = end;
    }
    return reading;
}

// Feeds the reader all bytes that have arrived, up to the end of the piece.
Reading read(const std::string& stream, const std::function<std::size_t()>& nextPiece) {
    MessageReader reader;
    Reading reading;
    std::size_t taken = 0;
    for (std::size_t come = 0; come < stream.size() && !reader.isBroken();) {
        come = std::min(stream.size(), come + nextPiece());
        while (taken < come && !reader.isBroken()) {
            taken += reader.feed(std::span(stream).subspan(taken, come - taken));
            const auto message = reader.take();
            if (message) {
                reading.messages.push_back({static_cast<int>(message->operation), message->content, taken});
            }
            if (!message && !reader.isBroken() && taken < come) {
                ADD_FAILURE() << "bytes were left though there is no message";
                return reading;
            }
        }
    }
    reading.broken = reader.isBroken();
    return reading;
}

std::string lengthOf(std::uint32_t length) {
    std::string bytes;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        bytes.push_back(static_cast<char>(length >> shift & 0xFFU));
    }
    return bytes;
}

class Random {
public:
    std::size_t below(std::size_t end) { return std::uniform_int_distribution<std::size_t>(0, end - 1)(numbers_); }
    std::string bytes(std::size_t count) {
        std::string text(count, '\0');
        std::ranges::generate(text, [this] { return static_cast<char>(below(256)); });
        return text;
    }
    std::string message() {
        const auto operation = static_cast<Operation>(operations[below(std::size(operations))]);
        return *encode(operation, bytes(below(8) == 0 ? below(maxMessageLength) : below(40)));
    }
    // Some messages, then perhaps garbage.
    std::string stream() {
        std::string glued;
        for (std::size_t count = below(4); count > 0; --count) {
            glued += message();
        }
        switch (below(5)) {
            case 0:
                return glued + bytes(below(60));
            case 1:
                return glued + lengthOf(static_cast<std::uint32_t>(below(20) + maxMessageLength - 10)) +
                       bytes(below(20));
            case 2:
                return glued + message().substr(0, below(12));
            case 3:
                for (std::size_t times = 1 + below(3); times > 0 && !glued.empty(); --times) {
                    glued[below(std::min<std::size_t>(glued.size(), 50))] ^= static_cast<char>(1U << below(8));
                }
                return glued + message();
            default:
                return glued + lengthOf(0) + message();
        }
    }

private:
    std::mt19937 numbers_{20240501};
};

}  // namespace

TEST(Protocol, LaysMessagesOutAsItSays) {
    EXPECT_EQ(encode(Operation::removeFileAtPath, "/a"), std::string("\0\0\0\x03\x01/a", 7));
    EXPECT_EQ(encode(Operation::failed), std::string("\0\0\0\x01\x13", 5));
    EXPECT_EQ(encode(Operation::done, std::string(8191, 'x'))->substr(0, 6), std::string("\0\0\x20\0\x12x", 6));
    EXPECT_EQ(encode(Operation::done, std::string(8192, 'x')), std::nullopt);
}

TEST(Protocol, GivesBackWhatWasSentInPiecesOfAnyLength) {
    std::string stream;
    for (const unsigned char operation : operations) {
        for (const auto& content : {std::string(), std::string("a\0b", 3), std::string(8191, '\xff')}) {
            stream += *encode(static_cast<Operation>(operation), content);
        }
    }
    const auto messages = expected(stream).messages;
    ASSERT_EQ(messages.size(), 3 * std::size(operations));
    for (const std::size_t length : {1UL, 2UL, 3UL, 4UL, 5UL, 7UL, 64UL, 8195UL, 8196UL, 8197UL, stream.size()}) {
        const auto reading = read(stream, [length] { return length; });
        EXPECT_EQ(reading.messages, messages) << "in pieces of " << length;
        EXPECT_FALSE(reading.broken);
    }
}

TEST(Protocol, TakesNoBytesBeyondAMessageNorBeforeItIsTaken) {
    const auto first = *encode(Operation::done, "/x");
    const auto both = first + *encode(Operation::working);
    MessageReader reader;
    EXPECT_EQ(reader.feed(both), first.size());
    EXPECT_EQ(reader.feed(std::span(both).subspan(first.size())), 0U);
    EXPECT_EQ(reader.take()->content, "/x");
    EXPECT_FALSE(reader.take());
    EXPECT_EQ(reader.feed(std::span(both).subspan(first.size())), both.size() - first.size());
    EXPECT_EQ(reader.take()->operation, Operation::working);
}

TEST(Protocol, RefusesLengthsAndOperationsThatAreNone) {
    const auto endOf = [](const std::string& stream) {
        MessageReader reader;
        const std::size_t taken = reader.feed(stream);
        const bool stays = reader.feed(stream) == 0 && !reader.take();
        return std::pair(taken, reader.isBroken() ? (stays ? "broken" : "broken and mended") : "whole");
    };
    const std::string many(100'000, '\x01');
    EXPECT_EQ(endOf(lengthOf(1) + "\x01").second, std::string("whole"));
    EXPECT_EQ(endOf(lengthOf(8192) + many), std::pair(lengthSize + 8192, "whole"));
    for (const std::uint32_t length : {0U, 8193U, 0x10001U, 0x80000000U, 0xFFFFFFFFU}) {
        EXPECT_EQ(endOf(lengthOf(length) + many), std::pair(lengthSize, "broken")) << length;
    }
    for (int operation = 0; operation < 256; ++operation) {
        const bool known = std::ranges::count(operations, operation) > 0;
        const auto stream = lengthOf(1) + static_cast<char>(operation);
        EXPECT_EQ(endOf(stream).second, std::string(known ? "whole" : "broken")) << operation;
        EXPECT_EQ(endOf(lengthOf(9) + static_cast<char>(operation)).second, std::string(known ? "whole" : "broken"));
    }
}

TEST(Protocol, ReadsOfAnyStreamWhatItsFormSays) {
    Random random;
    int broken = 0;
    std::size_t messages = 0;
    constexpr int streams = 1000;
    for (int round = 0; round < streams; ++round) {
        const auto stream = random.stream();
        const auto wanted = expected(stream);
        const std::size_t longest = 1 + random.below(random.below(2) == 0 ? 6 : 20'000);
        const auto reading = read(stream, [&] { return 1 + random.below(longest); });
        ASSERT_EQ(reading.messages, wanted.messages) << "stream " << round;
        ASSERT_EQ(reading.broken, wanted.broken) << "stream " << round;
        broken += wanted.broken ? 1 : 0;
        messages += wanted.messages.size();
    }
    EXPECT_GT(broken, streams / 4);
    EXPECT_LT(broken, streams * 3 / 4);
    EXPECT_GT(messages, 1000U);
}

}  // namespace brimvault::tests
