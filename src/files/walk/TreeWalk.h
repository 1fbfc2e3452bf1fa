#pragma once

#include <memory>
#include <stop_token>
#include <string>

#include "files/walk/FolderReference.h"
#include "files/walk/StackCollection.h"
#include "files/walk/TreeVisitor.h"

namespace brimvault::files {

/// Lets a walk hand pending folders to idle workers. Called on the walk's thread.
class WorkSharing {
public:
    virtual ~WorkSharing() = default;
    /// True while a worker is idle.
    [[nodiscard]] virtual bool isShareWanted() const = 0;
    virtual void give(FolderReference share) = 0;
    /// The walk has seen so many folders that helpers are worth their cost.
    virtual void onLargeTree() = 0;
};

/// Visits a folder and everything in it, depth first, each folder's files before its subfolders; only files that
/// were given to another walk may come later.
///
/// No symbolic link is followed and no mount is entered: every folder is opened by its name in its open parent folder,
/// and everything is done relative to that. However deep the tree, at most `maxOpenFolders` folders are kept open, the
/// innermost ones. To return to one that was closed, the walk opens ".." and goes on only if that is the very folder it
/// came from; a folder that was moved meanwhile ends the walk there. Where the visitor asks for it (WayBack), a folder
/// that could not be recognized again stays open: such a walk holds up to `maxOpenFoldersOnWayBack` and reports deeper
/// ones as closed (EMFILE).
///
/// A walk is used by one thread. It can share its pending work with other workers, each with a walk of its own; the
/// worker that finishes the last part of a folder leaves it. A stop ends it before the next entries.
class TreeWalk {
public:
    /// Fewer than 16 descriptors with the item's parent folder, a share's and two that are open for a moment.
    static constexpr int maxOpenFolders = 10;
    /// Well below 256, the smallest default of RLIMIT_NOFILE on any system.
    static constexpr int maxOpenFoldersOnWayBack = 128;
    /// The number of folders that a walk sees before it calls for helpers; large ones count several times.
    static constexpr int largeTree = 64;

    TreeWalk(TreeVisitor& visitor, const DirectoryHandle& outermost, std::stop_token stop,
             WorkSharing* sharing = nullptr)
        : visitor_(visitor), outermost_(outermost), stop_(std::move(stop)), sharing_(sharing) {}

    /// Visits the folder of that name in the outermost one. False when the walk was stopped before its end.
    [[nodiscard]] bool visit(const char* name);
    /// Visits what another walk of the same tree gave. False when the walk was stopped before its end.
    [[nodiscard]] bool visitShare(FolderReference share);

private:
    bool visitPending();
    void enter(const DirectoryHandle& parent, std::string name, const std::shared_ptr<VisitedFolder>& holder);
    Result<DirectoryHandle> open(const DirectoryHandle& parent, const char* name);
    void begin(DirectoryHandle handle, std::shared_ptr<VisitedFolder> folder);
    int listEntries(FolderReference& folder);
    int visitFilesWhileListing(FolderReference& folder);
    int visitFilesAfterListing(FolderReference& folder);
    void visitFile(const FolderReference& folder, const char* entry);
    void visitPendingFiles(FolderReference& folder);

    int holdNoMoreThan(int folders);
    [[nodiscard]] bool mayClose(FolderReference& folder) const;
    void shareWork();

    bool leave();
    bool returnTo(FolderReference& holder, const FolderReference& left);
    bool leaveLast(FolderReference left);

    TreeVisitor& visitor_;
    const DirectoryHandle& outermost_;
    std::stop_token stop_;
    WorkSharing* const sharing_;
    StackCollection stack_;
    DirectoryReader reader_;
    int listed_ = 0;  ///< entries of the folder listed last
    int seen_ = 0;    ///< folders, large ones counted several times
};

}  // namespace brimvault::files
