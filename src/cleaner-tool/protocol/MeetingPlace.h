#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace brimvault::cleaner {

/// The name under which a root remover is expected is this and six digits, which the application draws at random.
inline constexpr std::string_view nameBeginning = "com.quorvel.brimvault.BrimvaultCleaner.";
inline constexpr std::size_t digitsOfName = 6;

[[nodiscard]] bool isName(std::string_view name);

/// The folder in which the root removers of a user are met: only that user and the administrator may enter it.
[[nodiscard]] std::filesystem::path meetingFolder(uid_t user = ::getuid());

}  // namespace brimvault::cleaner
