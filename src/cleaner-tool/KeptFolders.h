#pragma once

#include <sys/types.h>

#include <filesystem>
#include <vector>

#include "files/NodeStatus.h"
#include "files/Remove.h"

namespace brimvault::cleaner {

/// How far a folder is kept. It is never removed itself; of what is below it, the nearest folder that says something of
/// that decides. Where two say something of one folder, the last of these holds.
enum class Keep {
    itself,         ///< says nothing of what is below
    contentsMayGo,  ///< what is in it may go, whoever owns it
    deeperMayGo,    ///< nothing directly in it goes; what is deeper may, below a folder that the user owns
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

/// The folders that are never removed. They are named by their paths, and known by what is found there: each removal
/// looks anew, as a folder may have been made, replaced or mounted since. What was found first stays kept as well,
/// wherever it is by then. One thread at a time.
class KeptFolders {
public:
    /// As many as a home with every section elsewhere has, many times over.
    static constexpr std::size_t mostFolders = 256;

    /// For requests of the user.
    explicit KeptFolders(uid_t user) : user_(user) {}

    /// False once there are too many, or for a path of too many names to be looked up time and again.
    [[nodiscard]] bool add(const KeptPath& folder);
    /// Looks the folders up, and with each those that hold it, which are kept themselves. Links in the paths are
    /// followed; a folder that does not exist is not kept. False when one cannot be looked at: then nothing may go.
    [[nodiscard]] bool lookUp();

    /// How far a folder is kept that is this object; null for one that is not listed.
    [[nodiscard]] const Keep* find(const files::FileIdentity& identity) const;
    [[nodiscard]] uid_t user() const { return user_; }

private:
    struct Entry {
        files::FileIdentity identity;
        Keep keep;
    };
    struct Folder {
        KeptPath kept;
        bool wasFound;
    };
    using Entries = std::vector<Entry>;
    /// What the path leads to and what holds that.
    [[nodiscard]] static bool lookUp(const KeptPath& folder, Entries& found);
    static void set(Entries& entries, const Entry& entry);

    uid_t user_;
    std::vector<Folder> folders_;
    Entries first_;    ///< as each folder was found first
    Entries entries_;  ///< as last looked up, and those
};

/// Keeps a removal away from them, and to what is the user's: the way to the item must lead through a folder that the
/// user owns, or into one whose contents may go. Who may remove with the administrator's rights what lies elsewhere
/// could take the places of others: their files in a folder for all, or what a service expects to find.
///
/// For one removal: it looks the folders up when it is made.
class KeptFoldersGuard final : public files::RemovalGuard {
public:
    explicit KeptFoldersGuard(KeptFolders& kept) : kept_(kept), isSound_(kept.lookUp()) {}

    void onWay(const files::NodeStatus& folder) override;
    [[nodiscard]] bool mayRemove(const files::NodeStatus& node) override;

private:
    [[nodiscard]] bool mayRemoveBelowWay() const;

    const KeptFolders& kept_;
    const bool isSound_;
    Keep nearest_ = Keep::everything;  ///< what the nearest folder on the way says of what is below it
    bool isNearestParent_ = false;     ///< that folder holds the item
    bool isUsers_ = false;             ///< the way has come through a folder of the user's
    bool isItemAsked_ = false;         ///< the first question is that for the item, the next are for what is in it
};

}  // namespace brimvault::cleaner
