#pragma once

#include <filesystem>
#include <vector>

#include "files/NodeStatus.h"
#include "files/Remove.h"

namespace brimvault::cleaner {

/// How far a folder is kept. It is never removed itself; of what is below it, the nearest folder that says something of
/// that decides. Where two say something of one folder, the last of these holds.
enum class Keep {
    itself,         ///< says nothing of what is below
    contentsMayGo,  ///< what is in it may go
    deeperMayGo,    ///< nothing directly in it goes, but what is deeper may
    everything,     ///< nothing below it goes
};

struct KeptPath {
    std::filesystem::path path;
    Keep keep;
};

/// The folders that hold the system, as a whole or as such.
[[nodiscard]] std::vector<KeptPath> systemFolders();
/// The folders of a user's home that sections are made of, and the home folder.
[[nodiscard]] std::vector<KeptPath> homeFolders(const std::filesystem::path& home);

/// The folders that are never removed, known by what they are and not by their names. One thread at a time.
class KeptFolders {
public:
    /// As many as a home with every section elsewhere has, many times over.
    static constexpr std::size_t mostFolders = 1024;

    /// Looks the folder up, and with it those that hold it, which are kept themselves. Links in the path are followed;
    /// a folder that does not exist is not kept. False once there are too many.
    bool add(const KeptPath& folder);

    /// How far a folder is kept that is this object; none for one that is not listed.
    [[nodiscard]] const Keep* find(const files::FileIdentity& identity) const;

private:
    struct Entry {
        files::FileIdentity identity;
        Keep keep;
    };
    void set(const std::filesystem::path& folder, Keep keep);

    std::vector<Entry> entries_;
};

/// Keeps a removal away from them. For one removal.
class KeptFoldersGuard final : public files::RemovalGuard {
public:
    explicit KeptFoldersGuard(const KeptFolders& kept) : kept_(kept) {}

    void onWay(const files::NodeStatus& folder) override;
    [[nodiscard]] bool mayRemove(const files::NodeStatus& node) override;

private:
    const KeptFolders& kept_;
    Keep nearest_ = Keep::everything;  ///< what the nearest folder on the way says of what is below it
    bool isNearestParent_ = false;     ///< that folder holds the item
    bool isItemAsked_ = false;         ///< the first question is that for the item; the way matters to no other
};

}  // namespace brimvault::cleaner
