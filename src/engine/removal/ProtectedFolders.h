#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "files/NodeStatus.h"
#include "platform/FolderLocations.h"
#include "platform/ProgramFolders.h"

namespace brimvault::engine {

/// The folders that are never removed: the sections' root folders, the home folder, the user's own folders (documents,
/// pictures and so on), /usr and the system's logs, the folders that trashes consist of, those of programs down to each
/// program's own, the program's settings, and every folder that holds one of them. A snapshot, compared by inode,
/// however a path is spelled, and by path, for folders on a volume that does not answer. One thread, and not the main
/// one.
///
/// The root remover has a list of its own (`cleaner-tool/KeptFolders`). The two are deliberately separate: a process
/// with root rights must not trust the program that asks it.
class ProtectedFolders {
public:
    ProtectedFolders();

    /// Whether the item at the path is a protected folder, or holds one, or is a symbolic link in the place of a
    /// program's folder.
    [[nodiscard]] bool keeps(const std::filesystem::path& path, const files::NodeStatus& item);
    /// Whether the path lies in what the system alone removes of its logs: there nothing is removed, whoever asks.
    [[nodiscard]] static bool areSystemLogs(const std::filesystem::path& path);
    /// The protected folders themselves, without those of single programs; some may not exist.
    [[nodiscard]] const std::vector<platform::FolderLocation>& locations() const { return locations_; }

private:
    /// A folder with protected ones below it.
    struct Holder {
        platform::ProgramFolder folder;
        platform::FolderLocation location;
    };
    [[nodiscard]] bool isOneOrHoldsOne(const std::filesystem::path& path, const files::NodeStatus& item) const;
    [[nodiscard]] bool isOfAProgram(const std::filesystem::path& path);
    void noteKeptIn(const std::filesystem::path& parent);

    std::vector<platform::FolderLocation> locations_;
    std::vector<Holder> holders_;
    unsigned maxLevels_ = 0;  ///< of all holders
    // What the parent of the last item keeps: the next item is mostly in the same.
    std::filesystem::path parent_;
    bool keepsAllFolders_ = false;
    std::vector<std::filesystem::path> keptNames_;
};

/// Their paths, symbolic links resolved.
[[nodiscard]] std::vector<std::filesystem::path> protectedFolders();

}  // namespace brimvault::engine
