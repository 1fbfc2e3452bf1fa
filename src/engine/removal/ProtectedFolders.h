#pragma once

#include <filesystem>
#include <vector>

#include "files/NodeStatus.h"
#include "platform/FolderLocations.h"

namespace brimvault::engine {

/// The folders that are never removed: the sections' root folders, the home folder, the program's settings, and every
/// folder that holds one of them. A snapshot, compared by inode, however a path is spelled, and by path, for folders on
/// a volume that does not answer. Any thread but the main one.
///
/// The root remover has a list of its own (`cleaner-tool/KeptFolders`). The two are deliberately separate: a process
/// with root rights must not trust the program that asks it.
class ProtectedFolders {
public:
    ProtectedFolders();

    /// Whether the item at the path is a protected folder, or holds one.
    [[nodiscard]] bool isOneOrHoldsOne(const std::filesystem::path& path, const files::NodeStatus& item) const;
    /// The protected folders themselves; some may not exist.
    [[nodiscard]] const std::vector<platform::FolderLocation>& locations() const { return locations_; }

private:
    std::vector<platform::FolderLocation> locations_;
};

/// Their paths, symbolic links resolved.
[[nodiscard]] std::vector<std::filesystem::path> protectedFolders();

}  // namespace brimvault::engine
