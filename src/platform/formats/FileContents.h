#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "files/DirectoryHandle.h"

namespace brimvault::platform {

/// Reads untrusted files: only regular ones, up to a size. Any thread; blocks as long as the disk does.
class FileContents {
public:
    /// A name in an open folder. None where it is missing, a symbolic link, no regular file, or longer than `maxBytes`.
    [[nodiscard]] static std::optional<std::string> read(const files::DirectoryHandle& folder, const char* name,
                                                         std::size_t maxBytes);
    /// The same for a path, whose symbolic links are followed.
    [[nodiscard]] static std::optional<std::string> read(const std::filesystem::path& file, std::size_t maxBytes);

    /// For a library that opens the path by itself: true if there is nothing now, or a regular file of at most
    /// `maxBytes`, so that it neither blocks on a FIFO nor reads too much.
    [[nodiscard]] static bool isHarmless(const std::filesystem::path& file, std::size_t maxBytes);
};

}  // namespace brimvault::platform
