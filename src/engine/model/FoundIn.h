#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "files/DirectoryHandle.h"
#include "platform/SectionRoots.h"

namespace brimvault::engine {

/// Where items were found. Items of one folder share it. Immutable once items have it; any thread.
struct FoundIn {
    /// Of the folder that holds the items, with a slash at the end; or of the one item, if it is listed under another
    /// name than its own.
    std::string path;
    std::optional<files::FileIdentity> folder = {};  ///< inode of the folder that holds the items; none if unknown
    std::shared_ptr<const platform::RootPlace> root =
        nullptr;  ///< the section's root that the scan came from; null if unknown

    /// Of items in the open folder of that path.
    [[nodiscard]] static std::shared_ptr<const FoundIn> in(const std::filesystem::path& path,
                                                           const files::DirectoryHandle& folder,
                                                           const std::shared_ptr<const platform::RootPlace>& root);
    /// Of one item, by its whole path; `folder` holds it.
    [[nodiscard]] static std::shared_ptr<const FoundIn> at(const std::filesystem::path& item,
                                                           const files::DirectoryHandle& folder,
                                                           const std::shared_ptr<const platform::RootPlace>& root);
};

}  // namespace brimvault::engine
