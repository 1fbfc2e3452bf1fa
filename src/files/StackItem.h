#pragma once

#include <memory>
#include <string>
#include <utility>

#include "files/DirectoryHandle.h"

namespace brimvault::files {

/// A folder whose contents are being visited: its name in the folder below it on the stack, what it was when opened,
/// and the names of its subfolders still to be visited. Its handle may be closed while deeper folders are visited.
struct FolderReference {
    std::string name;
    NodeStatus status;
    DirectoryHandle handle;
    std::string pendingFolders;  ///< names, each ended by a zero byte; taken from the end

    /// The next subfolder to visit, taken off the list; empty when there is none.
    std::string takePendingFolder();
};

/// One element of a StackCollection.
struct StackItem {
    explicit StackItem(FolderReference ref) : fsref(std::move(ref)) {}

    FolderReference fsref;
    std::unique_ptr<StackItem> prevItem;  ///< the item below
};

}  // namespace brimvault::files
