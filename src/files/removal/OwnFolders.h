#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

#include "files/DirectoryHandle.h"
#include "files/walk/VisitedFolder.h"

namespace brimvault::files {

/// Does what a folder's own mode refuses its owner, with the right to write to it. The folder of that name, with that
/// identity, gets it through a descriptor and has its mode back in every case. What `act` answers, 0 or an errno value;
/// EACCES where it is not the caller's own folder on the mount of `parent`, or is writable to him. Any thread.
[[nodiscard]] int withOwnFolderWritable(const DirectoryHandle& parent, const char* name, const FileIdentity& identity,
                                        const std::function<int()>& act);

/// The caller's own folders in a tree that is removed: where the mode of one refuses the removal of what is in it, its
/// owner gets all rights in it (u+rwx) for as long as the removal works there. A folder that stays gets back exactly
/// the mode that it had. Folders are changed through descriptors of them only, and never the one that holds the item.
///
/// Shared by the workers of one removal, whose walk has ended when this is destroyed. Any thread.
class OwnFolders {
public:
    /// What is to be put back.
    struct Change {
        NodePlace place;
        std::uint32_t permissions = 0;
    };

    /// `outermost` holds the item, and outlives this.
    explicit OwnFolders(const DirectoryHandle& outermost) : outermost_(outermost) {}
    OwnFolders(const OwnFolders&) = delete;
    OwnFolders& operator=(const OwnFolders&) = delete;
    /// Puts back the modes of the folders that the walk has not left, since it was stopped or lost its way.
    ~OwnFolders();

    /// Whether what was refused in an open folder is worth another try, since its mode was changed.
    [[nodiscard]] bool admit(const DirectoryHandle& handle, const VisitedFolder& folder);
    /// Opens a folder that its mode keeps from being opened: EACCES where it cannot be helped, EXDEV where another
    /// mount begins. `change` is set where its mode was changed; hand that over to `keep` once the walk knows the
    /// folder.
    [[nodiscard]] Result<DirectoryHandle> open(const DirectoryHandle& parent, const char* name,
                                               std::optional<Change>& change);
    void keep(const VisitedFolder& folder, const Change& change);
    /// The folder, which the walk has left, stays.
    void onStay(const VisitedFolder& folder, const DirectoryHandle& handle) { forget(folder, &handle); }
    void onGone(const VisitedFolder& folder) { forget(folder, nullptr); }

private:
    struct Changed {
        std::shared_ptr<const VisitedFolder> folder;
        Change change;
    };

    void forget(const VisitedFolder& folder, const DirectoryHandle* staying);
    void putAllBack() const;
    [[nodiscard]] Result<DirectoryHandle> reopen(const VisitedFolder& folder) const;

    const DirectoryHandle& outermost_;
    std::mutex mutex_;
    std::atomic<bool> hasChanged_ = false;
    std::map<const VisitedFolder*, Changed> changed_;
};

}  // namespace brimvault::files
