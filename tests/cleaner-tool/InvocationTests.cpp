#include "cleaner-tool/Invocation.h"

#include <gtest/gtest.h>

#include <vector>

#include "cleaner-tool/protocol/SocketPath.h"

namespace brimvault::tests {

using cleaner::Invocation;

namespace {

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
