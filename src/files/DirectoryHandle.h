#pragma once

#include <filesystem>
#include <functional>
#include <utility>

#include "files/DirectoryReader.h"
#include "files/NodeStatus.h"
#include "files/Result.h"

namespace brimvault::files {

/// An open directory, held by descriptor: what is done through it is done in that very directory, wherever its name
/// points by then. Movable, one owner; the const functions may be called by several threads at once.
class DirectoryHandle {
public:
    using OnWay = std::function<bool(const DirectoryHandle&, const NodeStatus&)>;
    /// Opens an absolute path, following no link on the way: ENOTDIR where a name is a link or no directory, EINVAL for
    /// a relative path or one with "..". The handle serves to reach what is inside; it cannot be listed itself. `onWay`
    /// is told of every folder that is opened, from the root on; where it answers false, that is as far as it goes
    /// (EPERM).
    static Result<DirectoryHandle> open(const std::filesystem::path& path, const OnWay& onWay = {});
    /// The same for a directory that is to be listed.
    static Result<DirectoryHandle> openForReading(const std::filesystem::path& path);

    DirectoryHandle(DirectoryHandle&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    DirectoryHandle& operator=(DirectoryHandle&& other) noexcept;
    ~DirectoryHandle() { close(); }

    /// Opens a directory inside this one: ENOTDIR for a link or a file, EXDEV where another mount begins.
    [[nodiscard]] Result<DirectoryHandle> openChild(const char* name) const;
    /// Opens the directory that holds this one now: ESTALE when it is not the expected one.
    [[nodiscard]] Result<DirectoryHandle> openParent(const NodePlace& expected) const;

    /// The same directory, opened so that it can be listed.
    [[nodiscard]] Result<DirectoryHandle> reopenForReading() const;
    /// Another descriptor of the same directory, for another owner. Its listing stands where that of this one does.
    [[nodiscard]] Result<DirectoryHandle> duplicate() const;

    /// Calls with every entry but "." and "..", from the first on, until the call answers false. 0, or the errno value
    /// that ended the reading early. One thread at a time.
    [[nodiscard]] int forEachEntry(const std::function<bool(const DirectoryEntry&)>& call) const;

    [[nodiscard]] int descriptor() const { return descriptor_; }
    /// As it is now; which directory it is never changes.
    [[nodiscard]] Result<NodeStatus> status() const { return statusAt(descriptor_, ""); }
    [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }
    /// Gives the descriptor back.
    void close();

private:
    explicit DirectoryHandle(int descriptor) : descriptor_(descriptor) {}
    static Result<DirectoryHandle> adopt(int descriptor);
    static Result<DirectoryHandle> openTold(const std::filesystem::path& path, const OnWay& onWay);

    int descriptor_ = -1;
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
