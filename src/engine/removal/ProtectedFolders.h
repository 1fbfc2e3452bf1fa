#pragma once

#include <filesystem>
#include <vector>

#include "files/NodeStatus.h"
#include "platform/FolderWays.h"

namespace brimvault::engine {

/// The folders that no list of items can rightly hold: the sections' own root folders, the home folder, the program's
/// settings, and whatever holds any of them; as they are when it is made. Known by what the folders are, however they
/// are spelled, and by their paths, as one on a volume that does not answer is known by nothing else. Any thread but
/// the main one.
class ProtectedFolders {
public:
    ProtectedFolders();

    /// Of what is at the path.
    [[nodiscard]] bool isOneOrHoldsOne(const std::filesystem::path& path, const files::NodeStatus& item) const;
    /// The root folders and the settings; some may not exist.
    [[nodiscard]] const std::vector<platform::FolderWay>& ways() const { return ways_; }

private:
    std::vector<platform::FolderWay> ways_;
};

/// Where they are.
[[nodiscard]] std::vector<std::filesystem::path> protectedFolders();

}  // namespace brimvault::engine
