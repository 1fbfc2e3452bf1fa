#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <vector>

#include "cleaner-tool/PinnedFolder.h"
#include "cleaner-tool/Requester.h"
#include "files/NodeStatus.h"
#include "files/trees/Remove.h"

namespace brimvault::cleaner {

/// How far a folder is kept. It is never removed itself; of what is below it, the nearest folder that says something of
/// that decides. Where two say something of one folder, the last of these holds.
enum class Keep {
    itself,         ///< says nothing of what is below
    contentsMayGo,  ///< what is in it may go, whoever owns it; said only of folders that are pinned
    deeperMayGo,    ///< nothing directly in it goes; what is deeper may, below a folder that the user owns
    everything,     ///< nothing below it goes
};

/// The links on the way to a folder that is to be kept.
enum class LinksOnWay {
    follow,  ///< only the administrator can have put them there
    refuse,  ///< others can: they would be told what is at the other end, if only by what is kept
};

struct KeptPath {
    std::filesystem::path path;
    Keep keep;
    LinksOnWay links = LinksOnWay::refuse;
};

/// The folders that hold the system, as a whole or as such.
[[nodiscard]] std::vector<KeptPath> systemFolders();
/// Those that all users share and whose contents may go.
[[nodiscard]] std::vector<std::filesystem::path> sharedSectionFolders();
/// The folders of a user's home that sections are made of.
[[nodiscard]] std::vector<std::filesystem::path> sectionFoldersOf(const std::filesystem::path& home);

/// The folders that are never removed, and those whose contents may go. The first are named by their paths, and known
/// by what is found there: each removal looks anew, as a folder may have been made, replaced or mounted since. What was
/// found first stays kept as well, wherever it is by then. The second are what was found when they were added, and
/// nothing else. One thread at a time.
class KeptFolders {
public:
    /// As many as a home with every section elsewhere has, many times over.
    static constexpr std::size_t maxFolders = 256;

    explicit KeptFolders(Requester requester) : requester_(std::move(requester)) {}

    /// False once there are too many, for a path of too many names to be looked up time and again, and for one whose
    /// contents were to go.
    [[nodiscard]] bool add(const KeptPath& folder);
    /// Keeps the folder itself; what is in it may go.
    void add(PinnedFolder folder) { pinned_.push_back(std::move(folder)); }
    /// Looks the folders up, and with each those that hold it, which are kept themselves; on a way that is closed to
    /// the user, up to the folder that is closed. One that does not exist, or that is on a volume which keeps even the
    /// administrator out, is not kept: nothing of it can be removed either. False when one cannot be looked at for
    /// another reason: then nothing may go.
    [[nodiscard]] bool lookUp();

    /// How far this folder is kept; none for one that is not listed.
    [[nodiscard]] std::optional<Keep> keepOf(const files::NodeStatus& folder) const;
    [[nodiscard]] const Requester& requester() const { return requester_; }

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
    [[nodiscard]] bool lookUp(const KeptPath& folder, Entries& found) const;
    static void set(Entries& entries, const Entry& entry);

    Requester requester_;
    std::vector<PinnedFolder> pinned_;
    std::vector<Folder> folders_;
    Entries first_;    ///< as each folder was found first
    Entries entries_;  ///< as last looked up, and those
};

/// Keeps a removal away from them, and to what is the user's: the way to the item must lead through a folder that the
/// user owns, or into one whose contents may go, and the user must be able to go it. Who may remove with the
/// administrator's rights what lies elsewhere could take the places of others: their files in a folder for all, or what
/// a service expects to find.
///
/// Where another mount begins, the way has to show anew that it is the user's: what an administrator has mounted in a
/// home is not the user's for being there.
///
/// For one removal: it looks the folders up when it is made.
class KeptFoldersGuard final : public files::RemovalGuard {
public:
    explicit KeptFoldersGuard(KeptFolders& kept) : kept_(kept), isSound_(kept.lookUp()) {}

    [[nodiscard]] bool onWay(const files::DirectoryHandle& folder, const files::NodeStatus& status) override;
    [[nodiscard]] bool mayRemove(const files::NodeStatus& node) override;

private:
    void beginMount();
    [[nodiscard]] bool mayRemoveBelowWay() const;

    const KeptFolders& kept_;
    const bool isSound_;
    std::optional<std::uint64_t> mount_;  ///< of the folder that the way has come to
    Keep nearest_ = Keep::everything;     ///< what the nearest folder on the way says of what is below it
    bool isNearestParent_ = false;        ///< that folder holds the item
    bool isUsers_ = false;                ///< the way has come through a folder of the user's on this mount
    bool isItemAsked_ = false;            ///< the first question is that for the item, the next are for what is in it
};

}  // namespace brimvault::cleaner
