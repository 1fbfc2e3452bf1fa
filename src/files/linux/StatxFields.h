#pragma once

#include <sys/stat.h>

#include <cstdint>

namespace brimvault::files {

/// The device of FileIdentity, as statx tells it.
inline std::uint64_t deviceNumber(const struct statx& raw) {
    return (static_cast<std::uint64_t>(raw.stx_dev_major) << 32U) | raw.stx_dev_minor;
}

/// What the object takes on its disk.
inline std::uint64_t allocatedBytes(const struct statx& raw) {
    constexpr std::uint64_t unit = 512;  // of stx_blocks, whatever the file system's own block size
    return raw.stx_blocks * unit;
}

}  // namespace brimvault::files
