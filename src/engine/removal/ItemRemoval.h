#pragma once

#include <QString>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "engine/model/FFItem.h"
#include "engine/model/FoundIn.h"
#include "engine/removal/PrivilegedRemover.h"
#include "engine/removal/ProtectedFolders.h"
#include "engine/removal/TrashCleanup.h"
#include "engine/removal/WrittenFiles.h"
#include "files/DirectoryHandle.h"

namespace brimvault::engine {

struct [[nodiscard]] ItemRemoval {
    bool gone = false;      ///< nothing is left under the path, or what is left was emptied
    QString reason;         ///< why something is left, for the user: the system's text if there is one
    qsizetype emptied = 0;  ///< files that were emptied and not removed, since processes write to them

    /// The reason if the system gives none.
    static QString withoutSystemText();
    /// The reason if the folder was exchanged since the item was found.
    static QString exchangedText();
    /// The reason if something else has come into the item's place since it was found.
    static QString replacedText();
    /// The reason if a log that is written to has further names, which keep what it holds.
    static QString severalNamesText();
    /// The reason if the program runs over a made-up home folder (`platform::systemRoot`) that does not hold the item.
    static QString outsideOfTrialText();
};

/// Removes items permanently; both a whole clean and a single removal go through it. An item is removed only from the
/// very folder (by inode) in which it was found, through an open descriptor of it, so that exchanging folders on the
/// way cannot redirect the removal. Protected folders are refused, and in a trial whatever lies outside of it. An item
/// of the desktop's trash takes along what the trash keeps of it: its .trashinfo record at once, its size when this is
/// destroyed.
///
/// A log is emptied where other processes have it open for writing (`ItemDetails::isEmptiedWhileWritten`): its blocks
/// would stay taken without its name. Nobody is asked for rights then. One whose folder or identity is not known is
/// removed.
///
/// If permission is denied the privileged remover is asked, once, unless the item or its folder is locked (immutable or
/// append-only). Blocks; one thread, and not the main one. The remover outlives it.
class ItemRemover {
public:
    explicit ItemRemover(PrivilegedRemover& remover) : remover_(remover) {}

    /// What becomes of a file that another process has open for writing.
    enum class IfWritten { remove, empty };
    /// `foundIn` is null for an item that no scan found: then whatever is at the path is removed. Nothing but
    /// what is expected is removed.
    ItemRemoval remove(const std::filesystem::path& path, const std::shared_ptr<const FoundIn>& foundIn,
                       const ExpectedNode& expected = {}, IfWritten ifWritten = IfWritten::remove);
    /// Removes an item without targets from the path where it lies; a log only if it is the file that was scanned.
    ItemRemoval removeItem(const FFItem& item, const std::filesystem::path& path);

    /// Why what is at a path must stay; empty if it may go.
    using Veto = std::function<QString(const std::filesystem::path& path)>;
    /// Removes what the item stands for, each target as `remove` does, and never what the item's own path names. One
    /// that stays keeps none of the others from going. `gone` if all are; else the reason is that of the first that
    /// stays.
    ItemRemoval removeTargets(const FFItem& item, const Veto& veto = {});

    /// An item where a scan found it.
    struct Reached {
        QString refusal;                                 ///< why it must stay where it is; empty also if it is gone
        const files::DirectoryHandle* folder = nullptr;  ///< that holds it, open until the next call; null otherwise
        files::NodeStatus item;
    };
    /// Finds the item again, by the checks of `remove`, for whoever does something else with it.
    Reached reach(const std::filesystem::path& path, const std::shared_ptr<const FoundIn>& foundIn,
                  const ExpectedNode& expected);
    /// Of the trashes of which an item was removed: see `TrashCleanup`.
    void removeOrphans(TrashCleanup::Clock::time_point now) const { trashes_.removeOrphans(now); }

private:
    ItemRemoval removeTarget(const ItemTargets& target, std::size_t number, const Veto& veto, IfWritten ifWritten);
    /// Empty if nothing speaks against its going.
    [[nodiscard]] QString reasonToKeep(const std::filesystem::path& path, const files::NodeStatus& item,
                                       const ExpectedNode& expected);
    [[nodiscard]] bool leadsWhereItDid(const FoundIn& foundIn);
    /// 0, or the errno value of opening the folder.
    [[nodiscard]] int openFolder(const std::shared_ptr<const FoundIn>& foundIn, const std::filesystem::path& folder);
    ItemRemoval removeNow(const std::filesystem::path& path, const files::DirectoryHandle* folder,
                          const ExpectedNode& expected, IfWritten ifWritten);
    [[nodiscard]] bool isWrittenAt(const files::DirectoryHandle& folder, const std::filesystem::path& path);
    /// Of a log that nobody is seen to write to.
    static ItemRemoval removeLog(const files::DirectoryHandle& folder, const std::filesystem::path& path,
                                 std::uint64_t identity);
    [[nodiscard]] bool isStillAt(const std::filesystem::path& path, const files::DirectoryHandle* folder) const;

    PrivilegedRemover& remover_;
    TrashCleanup trashes_;
    WrittenFiles written_;
    std::optional<ProtectedFolders> protected_;  ///< made for the first folder or link that is to be removed
    std::map<std::shared_ptr<const platform::RootPlace>, bool> leadsCache_;
    // The folder of the last item, kept open for the next.
    std::shared_ptr<const FoundIn> folderFoundIn_;
    std::optional<files::DirectoryHandle> folder_;
    bool isSameFolder_ = false;  ///< it is the one in which the items were found
};

/// Whether the name is one path component, neither "." nor "..", so that it leads out of no folder.
[[nodiscard]] bool isOneName(const std::filesystem::path& name);

/// Removes the item at the path.
ItemRemoval removeItemAt(const std::filesystem::path& path, PrivilegedRemover& remover = PrivilegedRemover::none());

}  // namespace brimvault::engine
