#pragma once

#include <filesystem>
#include <stop_token>
#include <string>

#include "files/StackCollection.h"

namespace brimvault::files {

/// What a TreeWalk tells of the tree that it visits. Names are bytes, valid during the call.
class TreeVisitor {
public:
    virtual ~TreeVisitor() = default;

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

/// Visits a folder and everything in it, depth first, each folder's files before its subfolders.
///
/// No name is followed through a link and no mount is entered: every folder is opened as one name of the open folder
/// that holds it, and everything is done relative to that. However deep the tree, at most `heldFolders` folders are
/// kept open: those nearest to where the walk is. Coming back to one that was closed, the walk opens ".." and goes on
/// only if that is the very folder it came from; a folder that was moved meanwhile ends the walk there.
///
/// A walk is used once, by one thread. A stop ends it before the next entry.
class TreeWalk {
public:
    /// One for the listing, one for the folder that holds the item and two in passing come on top: well below 16.
    static constexpr int heldFolders = 10;

    TreeWalk(TreeVisitor& visitor, std::stop_token stop) : visitor_(visitor), stop_(std::move(stop)) {}

    /// The folder is a name in an open folder. False when the walk was stopped before its end.
    [[nodiscard]] bool visit(const DirectoryHandle& parent, const char* name);
    /// Where the walk is, from the first folder's name on, for a report.
    [[nodiscard]] std::filesystem::path position() const;

private:
    void enter(const DirectoryHandle& parent, const std::string& name);
    int listEntries(FolderReference& folder);
    void closeFarthest();
    bool leave(const DirectoryHandle& outermost);

    TreeVisitor& visitor_;
    std::stop_token stop_;
    StackCollection stack_;
};

}  // namespace brimvault::files
