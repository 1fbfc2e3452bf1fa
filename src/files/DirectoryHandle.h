#pragma once

#include <filesystem>
#include <functional>
#include <utility>

#include "files/NodeStatus.h"
#include "files/Result.h"

namespace brimvault::files {

/// One entry of a directory as the listing names it. The kind is a hint: what is done to the entry must hold if it was
/// exchanged meanwhile.
struct DirectoryEntry {
    const char* name;  ///< bytes, zero-terminated, valid during the call only
    NodeKind kind;
};

/// An open directory, held by descriptor: what is done through it is done in that very directory, wherever its name
/// points by then. Movable, one owner; not to be used by two threads at once.
class DirectoryHandle {
public:
    using OnWay = std::function<void(const NodeStatus&)>;
    /// Opens an absolute path from the root, one name at a time, following no link on the way: ENOTDIR where a name is
    /// a link or no directory, EINVAL for a relative path or one with "..". The handle serves to reach what is inside;
    /// it cannot be listed itself. `onWay` is told of every folder that is opened, from the root on.
    static Result<DirectoryHandle> open(const std::filesystem::path& path, const OnWay& onWay = {});

    DirectoryHandle(DirectoryHandle&& other) noexcept
        : descriptor_(std::exchange(other.descriptor_, -1)), status_(other.status_) {}
    DirectoryHandle& operator=(DirectoryHandle&& other) noexcept;
    ~DirectoryHandle() { close(); }

    /// Opens a directory inside this one: ENOTDIR for a link or a file, EXDEV where another mount begins.
    [[nodiscard]] Result<DirectoryHandle> openChild(const char* name) const;
    /// Opens the directory that holds this one now: ESTALE when it is not the expected one.
    [[nodiscard]] Result<DirectoryHandle> openParent(const NodeStatus& expected) const;

    /// The same directory, opened so that it can be listed.
    [[nodiscard]] Result<DirectoryHandle> reopenForReading() const;

    /// Calls with every entry but "." and ".." until the call answers false. 0, or the errno value that ended the
    /// reading early.
    [[nodiscard]] int forEachEntry(const std::function<bool(const DirectoryEntry&)>& call) const;

    [[nodiscard]] int descriptor() const { return descriptor_; }
    /// As it was when opened.
    [[nodiscard]] const NodeStatus& status() const { return status_; }
    [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }
    /// Gives the descriptor back; the status stays known.
    void close();

private:
    DirectoryHandle(int descriptor, const NodeStatus& status) : descriptor_(descriptor), status_(status) {}
    static Result<DirectoryHandle> adopt(int descriptor);

    int descriptor_ = -1;
    NodeStatus status_;
};

enum class HiddenEntries { skip, include };

/// Calls with every direct child of the folder until the call answers false; hidden are the names that begin with a
/// full stop. 0, or the errno value that kept the folder from being read; a folder reached through a link is not read.
[[nodiscard]] int forEachChild(const std::filesystem::path& folder, HiddenEntries hidden,
                               const std::function<bool(const DirectoryEntry&)>& call);

}  // namespace brimvault::files
