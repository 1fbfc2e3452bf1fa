#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "files/DirectoryHandle.h"

namespace brimvault::platform {

/// What a file of others holds, as far as it is safe to take it in. Any thread; blocks as long as the disk does.
class FileContents {
public:
    /// Of a name in an open folder. None where it is missing, a link, no plain file, or longer than that many bytes.
    [[nodiscard]] static std::optional<std::string> read(const files::DirectoryHandle& folder, const char* name,
                                                         std::size_t mostBytes);
    /// Of a path, whose links are followed; else the same.
    [[nodiscard]] static std::optional<std::string> read(const std::filesystem::path& file, std::size_t mostBytes);

    /// For a library that opens the file by itself: whether what is there now, or nothing, neither keeps it waiting nor
    /// has it take in more than that many bytes.
    [[nodiscard]] static bool isHarmless(const std::filesystem::path& file, std::size_t mostBytes);
};

}  // namespace brimvault::platform
