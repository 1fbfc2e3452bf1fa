#pragma once

#include <filesystem>
#include <memory>

#include "files/DirectoryHandle.h"
#include "files/NodeStatus.h"
#include "files/walk/VisitedFolder.h"

namespace brimvault::files {

/// When a walk tells of the entries of a folder that are no folders.
enum class FilesTold {
    afterListing,  ///< a directory that is changed under its listing may show an entry twice or not at all
    whileListing,  ///< sooner, and without keeping their names: for who changes nothing
};

/// By what a walk that comes back to a folder which it has closed meanwhile knows that it is the same one.
enum class WayBack {
    byNumber,       ///< and the time of birth where the file system tells it
    byTimeOfBirth,  ///< where it is not told, folders stay open, and the walk goes no deeper than it can hold
};

/// What a TreeWalk tells of the tree that it visits. Names are bytes, valid during the call.
///
/// Where several workers visit one tree, each has a visitor of its own, and calls it from its thread alone.
class TreeVisitor {
public:
    virtual ~TreeVisitor() = default;

    /// For a further worker of the same tree; what it found is this one's when it is destroyed. Any thread. None where
    /// one thread visits the whole.
    [[nodiscard]] virtual std::unique_ptr<TreeVisitor> another() { return nullptr; }

    [[nodiscard]] virtual FilesTold filesTold() const { return FilesTold::afterListing; }
    [[nodiscard]] virtual WayBack wayBack() const { return WayBack::byNumber; }
    /// Whether a folder below the first is to be opened at all. Asked once for each, just before; the folder that holds
    /// it is given.
    virtual bool wantsFolder(const DirectoryHandle& /*parent*/, const char* /*name*/) { return true; }
    /// Whether a folder, opened by now, is to be visited: what is known of it here is known of the very folder.
    /// Answered with false, it is closed again and nothing more is told of it.
    virtual bool entersFolder(const DirectoryHandle& /*folder*/, const char* /*name*/) { return true; }
    /// A folder has been opened; its entries follow.
    virtual void onFolderEntered(const DirectoryHandle& /*folder*/) {}
    /// An entry that is no folder.
    virtual void onFile(const DirectoryHandle& folder, const char* name, NodeKind kind) = 0;
    /// Everything in the folder that its listing gave has been visited; the folder that holds it is given.
    virtual void onFolderLeft(const DirectoryHandle& /*parent*/, const VisitedFolder& /*folder*/) {}
    /// A folder that could not be opened; code is an errno value, EXDEV where another mount begins.
    virtual void onFolderClosed(const DirectoryHandle& parent, const char* name, int code) = 0;
    /// The way back to a folder is lost, because a folder on it was moved away; nothing above is visited further.
    virtual void onWayLost(const char* name, int code) = 0;

    /// Set by the walk: the folder whose entries are told of; null for the first folder itself.
    void setPlace(const VisitedFolder* place) { place_ = place; }

protected:
    /// The path of an entry where the walk is, from the first folder's name on.
    [[nodiscard]] std::filesystem::path pathOf(const char* name) const {
        return place_ == nullptr ? std::filesystem::path(name) : place_->position() / name;
    }

    [[nodiscard]] bool isBeforeFirstFolder() const { return place_ == nullptr; }
    [[nodiscard]] bool isInFirstFolder() const { return place_ != nullptr && place_->holder == nullptr; }

private:
    const VisitedFolder* place_ = nullptr;
};

}  // namespace brimvault::files
