#pragma once

#include "files/DirectoryHandle.h"
#include "files/NodeStatus.h"

namespace brimvault::files {

/// What a TreeWalk tells of the tree that it visits. Names are bytes, valid during the call.
class TreeVisitor {
public:
    virtual ~TreeVisitor() = default;

    /// Whether a folder below the first is to be opened at all. Asked once for each, just before; the folder that holds
    /// it is given.
    virtual bool wantsFolder(const DirectoryHandle& /*parent*/, const char* /*name*/) { return true; }
    /// Whether a folder, opened by now, is to be visited: what is known of it here is known of the very folder.
    /// Answered with false, it is closed again and nothing more is told of it.
    virtual bool entersFolder(const NodeStatus& /*folder*/, const char* /*name*/) { return true; }
    /// A folder has been opened; its entries follow.
    virtual void onFolderEntered(const NodeStatus& /*folder*/) {}
    /// An entry that is no folder.
    virtual void onFile(const DirectoryHandle& folder, const char* name) = 0;
    /// Everything in the folder has been visited; the folder that holds it is given with its name there.
    virtual void onFolderLeft(const DirectoryHandle& /*parent*/, const char* /*name*/) {}
    /// A folder that could not be opened; code is an errno value, EXDEV where another mount begins.
    virtual void onFolderClosed(const DirectoryHandle& parent, const char* name, int code) = 0;
    /// The listing of the folder where the walk is broke off with an errno value; what it gave is visited.
    virtual void onListingBroken(int code) = 0;
    /// The way back to a folder is lost, because a folder on it was moved away; nothing above is visited further.
    virtual void onWayLost(const char* name, int code) = 0;
};

}  // namespace brimvault::files
