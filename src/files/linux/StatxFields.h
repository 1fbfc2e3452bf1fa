#pragma once

#include <sys/stat.h>

#include <cstdint>

namespace brimvault::files {

/// The device of FileIdentity, as statx tells it.
inline std::uint64_t deviceNumber(const struct statx& raw) {
    return (static_cast<std::uint64_t>(raw.stx_dev_major) << 32U) | raw.stx_dev_minor;
}

}  // namespace brimvault::files
