#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace brimvault::platform {

/// A file of the program's own that only grows, up to a size; then it is renamed, over the one that was renamed before,
/// and begun anew. Only its owner may read it. Several processes may append to it: while one of them does, the others
/// do not rename it, so that a file may get longer by what they append. Blocks as long as the disk does; one thread at
/// a time.
class RotatedFile {
public:
    /// The folder and those above it are made when something is appended; `old` is the name after the renaming.
    RotatedFile(std::filesystem::path folder, std::string name, std::string old, std::size_t maxBytes)
        : folder_(std::move(folder)), name_(std::move(name)), old_(std::move(old)), maxBytes_(maxBytes) {}

    [[nodiscard]] std::filesystem::path path() const { return folder_ / name_; }
    /// Appends all of the text or nothing: 0, or an errno value. What is no regular file with one name, such as a link
    /// or a FIFO in its place, is not written to; nor is a file in a folder that is a link.
    [[nodiscard]] int append(std::string_view text) const;

private:
    const std::filesystem::path folder_;
    const std::string name_;
    const std::string old_;
    const std::size_t maxBytes_;
};

}  // namespace brimvault::platform
