#pragma once

#include <filesystem>

namespace brimvault::trial {

/// Removes a folder and all in it without following a link, however deep it is and whatever may not be read in it.
/// Missing folders are fine; what cannot go stays.
void removeTree(const std::filesystem::path& folder);

/// A folder that is kept in memory, where the system has one, else the folder for temporary files: for tests that make
/// tens of thousands of files.
[[nodiscard]] std::filesystem::path folderInMemory();

/// A new, empty folder of its own, with no link on the way to it; gone with everything in it at the end.
class TemporaryFolder {
public:
    explicit TemporaryFolder(const std::filesystem::path& in = std::filesystem::temp_directory_path());
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() { removeTree(path_); }

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    [[nodiscard]] std::filesystem::path operator/(const std::filesystem::path& inside) const { return path_ / inside; }

private:
    std::filesystem::path path_;
};

}  // namespace brimvault::trial
