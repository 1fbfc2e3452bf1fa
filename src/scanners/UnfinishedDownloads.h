#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "files/DirectoryHandle.h"

namespace brimvault::scanners {

/// The downloads of one folder that were not finished, recognised by the names that programs give them until then, and
/// what lies beside such a download and belongs to it: the empty file with which Firefox keeps its later name free, and
/// the file in which a program notes how far it has come. One thread.
class UnfinishedDownloads {
public:
    /// What is no row of its own.
    struct Companion {
        std::string name;
        files::NodeStatus status;
        bool isPlaceholder;  ///< the empty file
    };

    /// Takes a name of the listing, if it is one of those. All are taken before `lookBeside`.
    void note(std::string_view name);
    /// Looks what lies in the folder beside the names that were taken; asks the disk for a few names for each of them.
    void lookBeside(const files::DirectoryHandle& folder);

    [[nodiscard]] bool isUnfinished(std::string_view name) const { return rows_.find(name) != rows_.end(); }
    /// What the row of that name stands for beside itself.
    [[nodiscard]] const std::vector<Companion>& companionsOf(std::string_view name) const;
    /// Whether another row stands for it.
    [[nodiscard]] bool isCompanion(std::string_view name) const { return companions_.find(name) != companions_.end(); }

private:
    void addData(const files::DirectoryHandle& folder, const std::string& name);
    void addControl(const files::DirectoryHandle& folder, const std::string& name);
    void addPlaceholder(const files::DirectoryHandle& folder, const std::string& row, const std::string& name);
    void addCompanion(const std::string& row, const Companion& companion);

    std::vector<std::string> data_;     ///< what was loaded so far
    std::vector<std::string> control_;  ///< notes of programs
    std::map<std::string, std::vector<Companion>, std::less<>> rows_;
    std::set<std::string, std::less<>> companions_;
};

}  // namespace brimvault::scanners
