#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "files/DirectoryHandle.h"
#include "files/walk/VisitedFolder.h"

namespace brimvault::files {

/// Files of one folder, in the order in which they are taken, from the end.
struct ListedFiles {
    struct File {
        std::uint64_t inode;
        std::size_t place;  ///< of its entry
    };
    std::shared_ptr<const std::string> entries;  ///< each a byte for the kind and a name, ended by a zero byte
    std::vector<File> files;

    /// Half of them, those that would come last.
    ListedFiles takeHalf();
};

/// What one worker has to do in a folder: the files to tell of, and then the names of its subfolders that are still to
/// be visited. Its handle may be closed while deeper folders are visited.
struct FolderReference {
    std::shared_ptr<VisitedFolder> folder;
    DirectoryHandle handle;
    std::string pendingFolders;     ///< names, each ended by a zero byte; taken from the end
    ListedFiles pendingFiles = {};  ///< where there are so many that they are told of in parts

    [[nodiscard]] bool hasPending() const { return !pendingFolders.empty() || !pendingFiles.files.empty(); }
    /// The next subfolder to visit, taken off the list; empty when there is none.
    std::string takePendingFolder();

    /// Whether some stays when half is given away; so few files that they are told of sooner are not given.
    [[nodiscard]] bool canBeHalved() const;
    /// What is given to another worker, with a handle of its own: half of the files, or about half of the folders where
    /// no files wait, those that would come last. Of two or more at least one stays; a single folder is given whole.
    FolderReference takeHalf(DirectoryHandle another);
};

}  // namespace brimvault::files
