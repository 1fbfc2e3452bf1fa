#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "cleaner-tool/PinnedFolder.h"
#include "cleaner-tool/Requester.h"
#include "files/NodeStatus.h"
#include "files/removal/Remove.h"

namespace brimvault::cleaner {

/// How far a folder is protected. The folder itself is never removed; for what is below it, the rule of the nearest
/// listed ancestor decides. Of two rules for one folder the stricter holds: the later in this order.
enum class Keep {
    itself,         ///< no rule for what is below
    contentsMayGo,  ///< its contents may be removed, whoever owns them; for pinned folders only
    deeperMayGo,    ///< its direct children stay; what is deeper may go, below a folder that the user owns
    everything,     ///< nothing below it may be removed
};

/// Symbolic links in the path of a folder that is to be kept.
enum class LinksOnWay {
    follow,         ///< only root can have made them
    refuse,         ///< others may have made them, to learn from a refusal what is at the target
    followVisible,  ///< only to what the user can see, who learns nothing from a refusal
};

/// What is kept below a folder without being listed: folders, and symbolic links in their place. Of two rules for one
/// folder the later in this order holds, and keeps what the other would.
struct KeptBelow {
    unsigned levels = 0;  ///< folders down to this depth, whatever their names; 1 for direct children
    std::string name;     ///< one level deeper, the folders of this name; empty for none
    bool operator<(const KeptBelow& other) const { return std::tie(levels, name) < std::tie(other.levels, other.name); }
};

struct KeptPath {
    std::filesystem::path path;
    Keep keep;
    LinksOnWay links = LinksOnWay::refuse;
    KeptBelow below = {};
};

/// The folders of the operating system.
[[nodiscard]] std::vector<KeptPath> systemFolders();
/// Section folders that all users share; their contents may be removed.
[[nodiscard]] std::vector<std::filesystem::path> sharedSectionFolders();
/// The folders of a user's home that the sections list. `engine/removal/ProtectedFolders` has a list of its own, on
/// purpose: the tool runs as root and must trust neither the application nor its messages.
[[nodiscard]] std::vector<std::filesystem::path> sectionFoldersOf(const std::filesystem::path& home);
/// The home itself with its direct subfolders, those in which programs have a folder each, and those with secrets.
[[nodiscard]] std::vector<KeptPath> foldersOfProgramsIn(const std::filesystem::path& home);

/// The folders that are never removed, and those whose contents may be. The former are given by path and recognised by
/// device and inode; each removal looks them up again, as a folder may have been made, replaced or mounted since. What
/// a path led to at first stays protected too, wherever it has been moved. The latter (pinned) are looked up once, when
/// they are added. One thread at a time.
class KeptFolders {
public:
    /// Many times the number of folders of a home in which every section's folder lies elsewhere.
    static constexpr std::size_t maxFolders = 256;

    explicit KeptFolders(Requester requester) : requester_(std::move(requester)) {}

    /// False for more than `maxFolders`, for a path of more than 64 names, which each removal would look up, and for a
    /// folder whose contents may be removed: that must be pinned.
    [[nodiscard]] bool add(const KeptPath& folder);
    /// Keeps the folder itself; its contents may be removed.
    void add(PinnedFolder folder) { pinned_.push_back(std::move(folder)); }
    /// Looks up each folder and its ancestors, which are kept themselves; where links are refused, only down to the
    /// first that the user may not search. A folder that does not exist, or is on a volume that refuses even root
    /// (FUSE), is not kept: nothing in it can be removed either. False when one cannot be looked up for another reason:
    /// then nothing may be removed.
    [[nodiscard]] bool lookUp();

    /// None for a folder that is neither kept nor pinned.
    [[nodiscard]] std::optional<Keep> keepOf(const files::NodeStatus& folder) const;
    /// What the folder keeps below it.
    [[nodiscard]] KeptBelow belowOf(const files::NodeStatus& folder) const;
    [[nodiscard]] const Requester& requester() const { return requester_; }

private:
    struct Entry {
        files::FileIdentity identity;
        Keep keep;
        KeptBelow below;
    };
    struct Folder {
        KeptPath kept;
        bool wasFound;
    };
    using Entries = std::vector<Entry>;
    /// None for what is not listed.
    [[nodiscard]] const Entry* entryOf(const files::FileIdentity& identity) const;
    /// Finds the folder at the path and its ancestors.
    [[nodiscard]] bool lookUp(const KeptPath& folder, Entries& found) const;
    /// The same of a path without links.
    [[nodiscard]] files::Result<bool> open(const std::filesystem::path& path, LinksOnWay links, Entries& found) const;
    static void set(Entries& entries, const Entry& entry);

    Requester requester_;
    std::vector<PinnedFolder> pinned_;
    std::vector<Folder> folders_;
    Entries firstFound_;  ///< where each path led when it was first found
    Entries entries_;     ///< `firstFound_`, and where the paths led at the last look
};

/// Confines a removal to what is the user's, and away from the folders that are kept. The path to the item must lead
/// through a folder that the user owns, or into one whose contents may be removed, and the user must be able to search
/// every folder on it. Otherwise a user could use our root rights to replace other users' files in shared folders such
/// as /tmp, or files that a service trusts.
///
/// What lies in the home is counted in levels from the folders that keep some below them (`KeptBelow`), so that the
/// folders of each installed application need not be listed.
///
/// At each mount point ownership must be shown again: what an administrator has mounted in a home is not the user's.
///
/// For one removal: the constructor looks the folders up. With a folder that the item must lie in, it is that very one,
/// whatever the path leads to by now.
class KeptFoldersGuard final : public files::RemovalGuard {
public:
    explicit KeptFoldersGuard(KeptFolders& kept, const std::optional<files::FileIdentity>& expectedFolder = {})
        : kept_(kept), expectedFolder_(expectedFolder), isValid_(kept.lookUp()) {}

    [[nodiscard]] bool onWay(const files::DirectoryHandle& folder, const files::NodeStatus& status) override;
    [[nodiscard]] bool mayRemove(const files::NodeStatus& node) override;

private:
    void beginMount();
    void noteKeptBelow(const files::DirectoryHandle& folder, const files::NodeStatus& status);
    [[nodiscard]] bool isKeptBelow(const files::NodeStatus& item) const;
    [[nodiscard]] bool mayRemoveItem(const files::NodeStatus& item) const;

    const KeptFolders& kept_;
    const std::optional<files::FileIdentity> expectedFolder_;
    const bool isValid_;
    files::FileIdentity folder_;                     ///< that the path has come to; in the end the item's
    std::optional<std::uint64_t> mount_;             ///< of the folder that the path has come to
    Keep nearest_ = Keep::everything;                ///< the rule of the nearest listed ancestor
    bool isNearestParent_ = false;                   ///< that ancestor is the item's parent
    bool isBelowUsersFolder_ = false;                ///< the path has led through a folder of the user's on this mount
    KeptBelow below_;                                ///< of the folders passed: what is kept below the one come to
    std::optional<files::FileIdentity> namedChild_;  ///< in that folder, the one that is kept by its name
    bool isItemAsked_ = false;  ///< the first question is for the item, later ones for its contents
};

}  // namespace brimvault::cleaner
