#pragma once

#include <cerrno>
#include <filesystem>
#include <memory>

#include "files/DirectoryHandle.h"
#include "files/NodeStatus.h"
#include "files/walk/VisitedFolder.h"

namespace brimvault::files {

/// When a walk visits the entries of a folder that are no folders.
enum class FileVisits {
    afterListing,  ///< a directory that is changed under its listing may show an entry twice or not at all
    whileListing,  ///< sooner, and without storing their names: for a visitor that changes nothing
};

/// How a walk recognizes a folder that it has closed and reopens.
enum class WayBack {
    byNumber,       ///< inode, and the time of birth where the file system has one
    byTimeOfBirth,  ///< without one, folders stay open, and the walk goes no deeper than it can hold
};

/// Callbacks of a TreeWalk. Names are bytes, valid during the call.
///
/// Where several workers visit one tree, each has a visitor of its own and calls it on its own thread.
class TreeVisitor {
public:
    virtual ~TreeVisitor() = default;

    /// A visitor for a further worker; its results count for this one when it is destroyed. Any thread. Null for a
    /// visitor that is used by one thread alone.
    [[nodiscard]] virtual std::unique_ptr<TreeVisitor> another() { return nullptr; }

    [[nodiscard]] virtual FileVisits fileVisits() const { return FileVisits::afterListing; }
    [[nodiscard]] virtual WayBack wayBack() const { return WayBack::byNumber; }
    /// Whether to open a folder below the first one at all. Called once for each, just before it is opened.
    virtual bool wantsFolder(const DirectoryHandle& /*parent*/, const char* /*name*/) { return true; }
    /// Opens a folder in its own way that the system has refused to open for want of rights (EACCES).
    virtual Result<DirectoryHandle> openRefused(const DirectoryHandle& /*parent*/, const char* /*name*/) {
        return Result<DirectoryHandle>::failed(EACCES);
    }
    /// Whether to visit a folder that is open by now, so that nobody can replace it any more. If not, it is closed
    /// again and not mentioned further.
    virtual bool entersFolder(const DirectoryHandle& /*folder*/, const char* /*name*/) { return true; }
    /// A folder has been opened; its entries follow.
    virtual void onFolderEntered(const DirectoryHandle& /*folder*/) {}
    /// An entry that is no folder.
    virtual void onFile(const DirectoryHandle& folder, const char* name, NodeKind kind) = 0;
    /// All entries of the folder's listing have been visited; `left` is the folder itself.
    virtual void onFolderLeft(const DirectoryHandle& /*parent*/, const VisitedFolder& /*folder*/,
                              const DirectoryHandle& /*left*/) {}
    /// A folder that could not be opened; code is an errno value, EXDEV where another mount begins.
    virtual void onFolderClosed(const DirectoryHandle& parent, const char* name, int code) = 0;
    /// The walk cannot return to a parent folder, because a folder was moved away; nothing above is visited further.
    virtual void onWayLost(const char* name, int code) = 0;

    /// Set by the walk: the folder whose entries are visited; null for the first folder itself.
    void setPlace(const VisitedFolder* place) { place_ = place; }

protected:
    /// The path of an entry where the walk is, from the first folder's name on.
    [[nodiscard]] std::filesystem::path pathOf(const char* name) const {
        return place_ == nullptr ? std::filesystem::path(name) : place_->position() / name;
    }

    /// Null before the first folder.
    [[nodiscard]] const VisitedFolder* place() const { return place_; }
    [[nodiscard]] bool isBeforeFirstFolder() const { return place_ == nullptr; }
    [[nodiscard]] bool isInFirstFolder() const { return place_ != nullptr && place_->holder == nullptr; }

private:
    const VisitedFolder* place_ = nullptr;
};

}  // namespace brimvault::files
