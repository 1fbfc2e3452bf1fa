#pragma once

#include <filesystem>
#include <stop_token>
#include <string>

#include "files/StackCollection.h"
#include "files/TreeVisitor.h"

namespace brimvault::files {

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
