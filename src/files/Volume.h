#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "files/DirectoryHandle.h"

namespace brimvault::files {

/// A mounted file system, held by an open folder on it, so that later readings are of the same one. Calls block as long
/// as the volume does. Any thread, several at once.
class Volume {
public:
    /// Opens the folder, following no symbolic link; an errno value where that fails.
    [[nodiscard]] static Result<Volume> of(const std::filesystem::path& folder);

    /// `st_dev` of the folder, as in `FileIdentity`; none if the system does not tell.
    [[nodiscard]] std::optional<std::uint64_t> device() const;
    /// Bytes in free blocks, those kept for the administrator included; none if the system does not tell.
    [[nodiscard]] std::optional<std::uint64_t> freeBytes() const;
    /// Has the volume write what it has put off. Some free the blocks of removed files only then.
    void flush() const;

private:
    explicit Volume(DirectoryHandle folder) : folder_(std::move(folder)) {}

    DirectoryHandle folder_;
};

}  // namespace brimvault::files
