#include "files/NodeStatus.h"

#include <algorithm>
#include <initializer_list>

namespace brimvault::files {

std::uint64_t FileIdentity::digest() const {
    constexpr std::uint64_t multiplier = 0x9E3779B97F4A7C15;  // 2^64 divided by the golden ratio
    constexpr unsigned half = 32;
    const auto time = born ? static_cast<std::uint64_t>(born->time_since_epoch().count()) : 0;
    std::uint64_t mixed = 0;
    for (const std::uint64_t part : {device, inode, time}) {
        mixed = (mixed ^ part) * multiplier;
        mixed ^= mixed >> half;
    }
    return std::max<std::uint64_t>(mixed, 1);
}

}  // namespace brimvault::files
