#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "files/DirectoryHandle.h"
#include "files/FileDescriptor.h"
#include "files/Result.h"

namespace brimvault::files {

/// Opens a folder and makes it, with its parents, where it is missing: open to its owner alone. Follows no symbolic
/// link. Any thread.
[[nodiscard]] Result<DirectoryHandle> openOrMakeFolder(const std::filesystem::path& folder);

/// A new regular file to write to, with these permissions where the file system has such, whatever the umask is: EEXIST
/// where the name is taken, be it by a link. Any thread.
[[nodiscard]] Result<FileDescriptor> createFile(const DirectoryHandle& folder, const std::string& name,
                                                std::uint32_t permissions);

/// Writes all of the text: 0, or an errno value after which a part of it may be written. Blocks as long as the disk
/// does; any thread.
[[nodiscard]] int writeAll(const FileDescriptor& file, std::string_view text);

}  // namespace brimvault::files
