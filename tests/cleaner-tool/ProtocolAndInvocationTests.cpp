#include "cleaner-tool/protocol/Protocol.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <vector>

#include "cleaner-tool/Invocation.h"
#include "cleaner-tool/protocol/SocketPath.h"

namespace brimvault::tests {

using namespace cleaner;

namespace {

static_assert(sizeof(MessageReader) < maxMessageLength + 64, "it holds one message and nothing else");

constexpr std::size_t lengthSize = 4;
constexpr unsigned char operations[] = {1, 2, 3, 4, 16, 17, 18, 19};

// The messages of a stream that arrives in pieces of one length.
std::vector<Message> readInPieces(const std::string& stream, std::size_t length) {
    MessageReader reader;
    std::vector<Message> messages;
    for (std::size_t start = 0; start < stream.size(); start += length) {
        auto piece = std::span(stream).subspan(start, std::min(length, stream.size() - start));
        while (!piece.empty()) {
            piece = piece.subspan(reader.feed(piece));
            if (auto message = reader.take()) {
                messages.push_back(std::move(*message));
            } else if (!piece.empty()) {
                return messages;  // bytes were left though there is no message
            }
        }
    }
    return messages;
}

std::string lengthOf(std::uint32_t length) {
    std::string bytes;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        bytes.push_back(static_cast<char>(length >> shift & 0xFFU));
    }
    return bytes;
}

const std::string beginning = "com.quorvel.brimvault.BrimvaultCleaner.";
const std::string name = beginning + "012345";

std::optional<Invocation> invoked(const std::vector<std::string>& arguments, const char* user = "1000") {
    std::vector<const char*> all = {"BrimvaultCleaner"};
    for (const auto& argument : arguments) {
        all.push_back(argument.c_str());
    }
    return Invocation::of(static_cast<int>(all.size()), all.data(), user);
}

}  // namespace

TEST(Protocol, LaysMessagesOutAsItSays) {
    EXPECT_EQ(encode(Operation::removeFileAtPath, "/a"), std::string("\0\0\0\x03\x01/a", 7));
    EXPECT_EQ(encode(Operation::failed), std::string("\0\0\0\x01\x13", 5));
    EXPECT_EQ(encode(Operation::done, std::string(8191, 'x'))->substr(0, 6), std::string("\0\0\x20\0\x12x", 6));
    EXPECT_EQ(encode(Operation::done, std::string(8192, 'x')), std::nullopt);
}

TEST(Protocol, GivesBackWhatWasSentInPiecesOfAnyLength) {
    std::string stream;
    std::vector<Message> sent;
    for (const unsigned char operation : operations) {
        for (const auto& content : {std::string(), std::string("a\0b", 3), std::string(8191, '\xff')}) {
            sent.push_back({static_cast<Operation>(operation), content});
            stream += *encode(sent.back().operation, content);
        }
    }
    const auto isSame = [](const Message& one, const Message& other) {
        return one.operation == other.operation && one.content == other.content;
    };
    for (const std::size_t length : {1UL, 2UL, 3UL, 4UL, 5UL, 7UL, 64UL, 8195UL, 8196UL, 8197UL, stream.size()}) {
        EXPECT_TRUE(std::ranges::equal(readInPieces(stream, length), sent, isSame)) << "in pieces of " << length;
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
    EXPECT_EQ(endOf(lengthOf(8192) + many), std::pair(lengthSize + 8192, "whole"));
    for (const std::uint32_t length : {0U, 8193U, 0x10001U, 0x80000000U, 0xFFFFFFFFU}) {
        EXPECT_EQ(endOf(lengthOf(length) + many), std::pair(lengthSize, "broken")) << length;
    }
    for (int operation = 0; operation < 256; ++operation) {
        const std::string wanted = std::ranges::count(operations, operation) > 0 ? "whole" : "broken";
        for (const std::uint32_t length : {1U, 9U}) {
            EXPECT_EQ(endOf(lengthOf(length) + static_cast<char>(operation)).second, wanted) << operation;
        }
    }
}

TEST(Protocol, TellsFoldersByTheirIdentityAlone) {
    const std::chrono::system_clock::time_point birth(std::chrono::nanoseconds(-1'600'000'000'123'456'789));
    constexpr auto max = std::numeric_limits<std::uint64_t>::max();
    for (const auto& identity : {files::FileIdentity{0, 7, {}}, files::FileIdentity{max, max, birth}}) {
        EXPECT_EQ(identityIn(identityText(identity)), identity);
    }
    for (const char* text : {"", "1", "1 ", "1 x", "1 2 ", "1 2 3 4", "1 2 3 ", "1  2", "-1 2", "1 2 3.", " 1 2",
                             "18446744073709551616 2"}) {
        EXPECT_EQ(identityIn(text), std::nullopt) << text;
    }
}

TEST(Invocation, IsANameAProcessAndAUser) {
    const auto invocation = invoked({name, "4711"});
    ASSERT_TRUE(invocation);
    EXPECT_EQ(invocation->name, name);
    EXPECT_EQ(invocation->application, 4711);
    EXPECT_EQ(invocation->user, 1000U);
    EXPECT_TRUE(invoked({name, "2147483647"}, "4294967294"));
    EXPECT_FALSE(invoked({}) || invoked({name}) || invoked({name, "1", "1"}) || Invocation::of(0, nullptr, "1000"));
}

TEST(Invocation, TakesNoOtherNamesNorNumbers) {
    for (const auto& other : {std::string(), beginning, beginning + "12345", beginning + "1234567", name + "\n",
                              beginning + "12345x", beginning + "-12345", beginning + " 12345", beginning + "/12345",
                              "/" + name, "x" + name, "x" + name.substr(1), beginning + "12\xb2\xb2" + "34",
                              std::string("012345"), beginning + "01234" + std::string(1, '\0')}) {
        EXPECT_FALSE(invoked({other, "4711"})) << other;
        EXPECT_FALSE(cleaner::isSocketName(other)) << other;
    }
    for (const char* number : {"", "0", "00", "-1", "+1", "1x", "x1", " 1", "1 ", "1\n", "0x10", "1.0", "root",
                               "4294967295", "4294967296", "4294967297", "18446744073709551617"}) {
        EXPECT_FALSE(invoked({name, number})) << number;
        EXPECT_FALSE(invoked({name, "4711"}, number)) << number;
    }
    EXPECT_FALSE(invoked({name, "2147483648"}) || invoked({name, "4711"}, nullptr));
}

}  // namespace brimvault::tests
