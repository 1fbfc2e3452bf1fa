#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <filesystem>
#include <string_view>

namespace brimvault::cleaner {

/// A root remover's socket is named by this prefix and six digits, which the application draws at random.
inline constexpr std::string_view socketNamePrefix = "com.quorvel.brimvault.BrimvaultCleaner.";
inline constexpr std::size_t socketNameDigits = 6;

[[nodiscard]] bool isSocketName(std::string_view name);

/// The folder of the sockets of a user's root removers: only that user and root may enter it.
[[nodiscard]] std::filesystem::path socketFolder(uid_t user = ::getuid());

}  // namespace brimvault::cleaner
