#include "platform/Accounts.h"

#include <grp.h>
#include <pwd.h>

#include <vector>

namespace brimvault::platform {

namespace {

constexpr std::size_t bufferSize = 64UL * 1024;  // a group's record names all its members

}  // namespace

QString userNameOf(std::uint32_t user) {
    std::vector<char> buffer(bufferSize);
    passwd record{};
    passwd* found = nullptr;
    ::getpwuid_r(user, &record, buffer.data(), buffer.size(), &found);
    return found == nullptr ? QString::number(user) : QString::fromLocal8Bit(found->pw_name);
}

QString groupNameOf(std::uint32_t group) {
    std::vector<char> buffer(bufferSize);
    ::group record{};
    ::group* found = nullptr;
    ::getgrgid_r(group, &record, buffer.data(), buffer.size(), &found);
    return found == nullptr ? QString::number(group) : QString::fromLocal8Bit(found->gr_name);
}

}  // namespace brimvault::platform
