#include "cleaner-tool/Invocation.h"

#include <gtest/gtest.h>

#include <vector>

#include "cleaner-tool/protocol/SocketPath.h"

namespace brimvault::tests {

using cleaner::Invocation;

namespace {

const std::string name = "com.quorvel.brimvault.BrimvaultCleaner.012345";

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
}

TEST(Invocation, HasTwoArgumentsExactly) {
    EXPECT_FALSE(invoked({}));
    EXPECT_FALSE(invoked({name}));
    EXPECT_FALSE(invoked({name, "1", "1"}));
    EXPECT_FALSE(Invocation::of(0, nullptr, "1000"));
}

TEST(Invocation, TakesNoOtherNames) {
    const auto beginning = name.substr(0, name.size() - 6);
    for (const auto& other :
         {std::string(), beginning, beginning + "12345", beginning + "1234567", beginning + "12345\n", name + "\n",
          beginning + "12345x", beginning + "-12345", beginning + " 12345", beginning + "../../", beginning + "/12345",
          "/" + name, "./" + name, "x" + name, beginning + "\xd9\xa1\xd9\xa2\xd9\xa3", beginning + "12\xb2\xb2" + "34",
          std::string("012345")}) {
        EXPECT_FALSE(invoked({other, "4711"})) << other;
    }
    EXPECT_FALSE(cleaner::isSocketName(std::string_view("com.quorvel.brimvault.BrimvaultCleaner.01234\0", 45)));
}

TEST(Invocation, TakesNoOtherNumbers) {
    for (const char* number : {"", "0", "-1", "+1", "1x", "x1", " 1", "1 ", "1\n", "0x10", "1e3", "1.0", "2147483648",
                               "4294967297", "18446744073709551617", "99999999999999999999"}) {
        EXPECT_FALSE(invoked({name, number})) << number;
    }
    EXPECT_FALSE(invoked({name, "4711"}, nullptr));
    for (const char* user : {"", "0", "00", "-1", "+1000", " 1000", "1000 ", "1000x", "root", "4294967295",
                             "4294967296", "18446744073709552616"}) {
        EXPECT_FALSE(invoked({name, "4711"}, user)) << user;
    }
}

}  // namespace brimvault::tests
