#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace brimvault::trial {

/// A made-up home folder with something in every section. Its files are allocated, not written: they take their lengths
/// on the disk, 1.2 GB together. Every problem is a std::exception.
class SampleHome {
public:
    /// A visible entry of the caches folder and the bytes that a scan is to find in it.
    struct Entry {
        std::string name;
        std::uint64_t size;
    };
    /// Relative path to a text that tells its kind, its length and what it holds.
    using Fingerprint = std::map<std::filesystem::path, std::string>;

    /// Fills a folder that is empty or does not exist yet; refuses any other.
    explicit SampleHome(const std::filesystem::path& folder);

    /// Adds applications with many localizations; some hundred folders, so only where they are looked at.
    void makeApplications() const;

    /// Absolute, with no link on the way.
    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    [[nodiscard]] std::filesystem::path library() const { return path_ / "Library"; }
    [[nodiscard]] std::filesystem::path caches() const { return path_ / "Library" / "Caches"; }
    [[nodiscard]] std::filesystem::path containers() const { return path_ / "Library" / "Containers"; }
    [[nodiscard]] std::filesystem::path downloads() const { return path_ / "Downloads"; }
    [[nodiscard]] std::filesystem::path trash() const { return path_ / ".Trash"; }
    /// The desktop's own trash folder, with "files" and "info".
    [[nodiscard]] std::filesystem::path desktopTrash() const { return path_ / ".local" / "share" / "Trash"; }
    [[nodiscard]] std::filesystem::path applications() const { return path_ / "Applications"; }
    [[nodiscard]] std::filesystem::path documents() const { return path_ / "Documents"; }
    /// What links in the caches folder and in a container point at.
    [[nodiscard]] std::filesystem::path precious() const { return path_ / "Precious"; }

    /// What a scan of Caches is to list, largest first: the folders of `namedCaches`, the plain file, the link with the
    /// length of its own text, and the three containers (one has no caches and counts 0).
    [[nodiscard]] std::vector<Entry> cachesSection() const;

    /// A file at the top that tells a sample home from a real one.
    static constexpr const char* marker = ".brimvault-sample-home";
    static constexpr const char* iconName = "AppIcon.icns";  ///< among each application's resources
    static constexpr const char* plainFileName = "com.vendor.maps";
    static constexpr const char* linkName = "com.vendor.archive";
    static constexpr const char* hiddenName = ".com.vendor.hidden";
    static constexpr const char* emptyContainer = "com.vendor.calculator";  ///< without a caches folder
    static constexpr const char* fullContainer = "com.vendor.reader";       ///< with caches of its own
    static constexpr const char* linkedContainer = "com.vendor.visitor";    ///< its caches folder is a link

    /// Everything in the home but what lies in the folders (relative paths); links are not followed. Equal answers
    /// before and after mean that nothing was touched.
    [[nodiscard]] Fingerprint everythingOutside(const std::vector<std::filesystem::path>& folders) const;
    /// Everything outside Library/Caches.
    [[nodiscard]] Fingerprint everythingOutsideCaches() const { return everythingOutside({"Library/Caches"}); }

private:
    void makeCaches() const;
    void makeContainers() const;
    void makeOtherSections() const;
    void makeUntouchables() const;

    std::filesystem::path path_;
};

/// A file with a text in it; its folders are made.
void writeFile(const std::filesystem::path& file, const std::string& text);
/// A sparse file of so many bytes; its folders are made.
void writeSparseFile(const std::filesystem::path& file, std::uint64_t size);
/// A file of so many bytes that takes them on the disk too, without their being written; its folders are made.
void writeAllocatedFile(const std::filesystem::path& file, std::uint64_t size);
/// What `SampleHome::everythingOutside` answers, of any folder.
[[nodiscard]] SampleHome::Fingerprint fingerprint(const std::filesystem::path& folder,
                                                  const std::vector<std::filesystem::path>& without = {});

}  // namespace brimvault::trial
