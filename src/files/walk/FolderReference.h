#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "files/DirectoryHandle.h"
#include "files/walk/VisitedFolder.h"

namespace brimvault::files {

/// Files of one folder, taken from the end.
struct ListedFiles {
    struct File {
        std::uint64_t inode;
        std::size_t place;  ///< where its entry begins
    };
    std::shared_ptr<const std::string> entries;  ///< each a byte for the kind and a name, ended by a zero byte
    std::vector<File> files;

    /// Splits off half of them, those that would come last.
    ListedFiles takeHalf();
};

/// The pending work of one worker in a folder: files, and then subfolders. Its handle may be closed while deeper
/// folders are visited.
struct FolderReference {
    std::shared_ptr<VisitedFolder> folder;
    DirectoryHandle handle;
    std::string pendingFolders;     ///< names, each ended by a zero byte; taken from the end
    ListedFiles pendingFiles = {};  ///< only where there are so many that they are visited in parts

    [[nodiscard]] bool hasPending() const { return !pendingFolders.empty() || !pendingFiles.files.empty(); }
    /// The next subfolder to visit, taken off the list; empty when there is none.
    std::string takePendingFolder();

    /// Whether something is left when half is given away. False for few files: visiting them costs less than sharing.
    [[nodiscard]] bool canBeHalved() const;
    /// Splits off work for another worker, with a handle of its own: half of the files, or about half of the folders
    /// where no files are pending, those that would come last. Of two or more folders at least one stays; a single one
    /// is given away.
    FolderReference takeHalf(DirectoryHandle another);
};

}  // namespace brimvault::files
