#pragma once

#include <filesystem>
#include <functional>

#include "files/DirectoryReader.h"
#include "files/FileDescriptor.h"
#include "files/NodeStatus.h"
#include "files/Result.h"

namespace brimvault::files {

/// An open directory, held by descriptor: what is done through it is done in that very directory, wherever its name
/// points by then. Movable, one owner; several threads may call the const functions at once.
class DirectoryHandle {
public:
    using OnWay = std::function<bool(const DirectoryHandle&, const NodeStatus&)>;
    /// Opens an absolute path, following no symbolic link on the way: ENOTDIR where a name is a link or no directory,
    /// EINVAL for a relative path or one with "..". The handle gives access to what is inside; it cannot be listed
    /// itself. `onWay` is called with every folder that is opened, from the root on; where it answers false, opening
    /// ends with EPERM.
    static Result<DirectoryHandle> open(const std::filesystem::path& path, const OnWay& onWay = {});
    /// The same for a directory that is to be listed.
    static Result<DirectoryHandle> openForReading(const std::filesystem::path& path);

    /// Opens a directory inside this one: ENOTDIR for a link or a file, EXDEV where another mount begins.
    [[nodiscard]] Result<DirectoryHandle> openChild(const char* name) const;
    /// The same without need of any right in that directory and on whatever mount it is; it cannot be listed.
    [[nodiscard]] Result<DirectoryHandle> openChildToPass(const char* name) const;
    /// Opens the parent directory: ESTALE when it is not the expected one.
    [[nodiscard]] Result<DirectoryHandle> openParent(const NodePlace& expected) const;

    /// The same directory, opened so that it can be listed.
    [[nodiscard]] Result<DirectoryHandle> reopenForReading() const;
    /// Another descriptor of the same directory, for another owner. Its listing stands where that of this one does.
    [[nodiscard]] Result<DirectoryHandle> duplicate() const;

    /// Calls with every entry but "." and "..", from the first on, until the call answers false. 0, or the errno value
    /// that ended the reading early. One thread at a time.
    [[nodiscard]] int forEachEntry(const std::function<bool(const DirectoryEntry&)>& call) const;

    [[nodiscard]] int descriptor() const { return descriptor_.number(); }
    /// As it is now; which directory it is never changes.
    [[nodiscard]] Result<NodeStatus> status() const { return statusAt(descriptor(), ""); }
    [[nodiscard]] bool isOpen() const { return descriptor_.isOpen(); }
    void close() { descriptor_ = FileDescriptor(); }

private:
    explicit DirectoryHandle(int descriptor) : descriptor_(descriptor) {}
    static Result<DirectoryHandle> adopt(int descriptor);
    static Result<DirectoryHandle> openStepwise(const std::filesystem::path& path, const OnWay& onWay);

    /// The system's part: each answers a descriptor, or -1 with errno set.
    /// A name in an open directory, to be listed: ENOTDIR for a symbolic link or a file, EXDEV where another mount
    /// begins; ".." is the parent directory.
    static int openOnSameMount(int directory, const char* name);
    /// An absolute path, following no symbolic link on the way or at its end (ENOTDIR), for access to what is inside.
    /// The directory need not be readable, and cannot be listed.
    static int openWithoutLinks(const char* path);
    /// The same of a name in an open directory, on whatever mount it is.
    static int openChildWithoutLinks(int directory, const char* name);

    FileDescriptor descriptor_;
};

enum class HiddenEntries { skip, include };

/// Calls with every direct child of the folder until the call answers false; hidden are the names that begin with a
/// full stop. 0, or the errno value that kept the folder from being read; a folder reached through a link is not read.
[[nodiscard]] int forEachChild(const std::filesystem::path& folder, HiddenEntries hidden,
                               const std::function<bool(const DirectoryEntry&)>& call);
/// The same of a folder that is held open for listing.
[[nodiscard]] int forEachChild(const DirectoryHandle& folder, HiddenEntries hidden,
                               const std::function<bool(const DirectoryEntry&)>& call);

}  // namespace brimvault::files
