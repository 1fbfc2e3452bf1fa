#pragma once

#include <QList>
#include <QString>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "engine/ItemArrays.h"
#include "engine/model/CleanableItem.h"
#include "engine/model/FoundIn.h"
#include "engine/model/ItemNote.h"
#include "files/NodeStatus.h"
#include "files/trees/ReclaimableSpace.h"
#include "platform/TrashRecord.h"

namespace brimvault::engine {

/// What the window needs to find an item's icon: the kind of file it was when it was found.
struct IconSource {
    files::NodeKind kind = files::NodeKind::other;
    bool operator==(const IconSource&) const = default;
};

/// What a name had when it was found.
struct ExpectedNode {
    std::uint64_t identity = 0;  ///< its digest; 0 where that does not matter
    bool isEmpty = false;        ///< it was a file of no bytes, which has something to say only as long as it is one
};

/// Entries of one folder that an item stands for.
struct ItemTargets {
    std::shared_ptr<const FoundIn> folder;  ///< where they lie
    std::vector<std::string> names;         ///< exact bytes
    /// What the names had, in their order: nothing else at a name is removed. Empty where it does not matter.
    std::vector<ExpectedNode> expected = {};

    [[nodiscard]] ExpectedNode expectedOf(std::size_t number) const {
        return number < expected.size() ? expected[number] : ExpectedNode();
    }
};

/// What only some items have; all of it is set before the item is posted.
struct ItemDetails {
    const char* rule = "";            ///< the identifier of the rule that found it; lives as long as the program
    QString noteArgument;             ///< for the note's text
    QString application;              ///< the identifier of the desktop entry whose icon it has
    bool needsAdministrator = false;  ///< belongs to another user
    bool isUnfinished = false;        ///< a download that was not finished, whatever the note is
    /// It is a log, or stands for logs: one that a process writes to when it is to be removed is emptied instead.
    bool isEmptiedWhileWritten = false;
    /// Set for an item that stands for several things: these alone are removed, and never what its path names.
    std::vector<ItemTargets> targets;
    std::optional<platform::TrashRecord> trashed;  ///< set for an item of a desktop's trash
};

/// One file or folder that can be removed, of the Downloads, Caches, Trash or Logs section. There may be hundreds of
/// thousands, so items of one folder share its path.
class FFItem final : public CleanableItem {
public:
    /// Name and size in bytes; no path: the item is addressed by its name inside its section's folder.
    static std::shared_ptr<FFItem> initWithName(const std::filesystem::path& name, quint64 nsz);
    /// Full path and size in bytes; the name is the path's last component.
    static std::shared_ptr<FFItem> initWithPath(const std::filesystem::path& path, quint64 nsz);

    [[nodiscard]] IconSource getDisplayIcon() const { return pIcon_; }
    void setIcon(IconSource icon) { pIcon_ = icon; }
    /// Exact bytes, for system calls; `ppdisplayName` is for people.
    [[nodiscard]] std::filesystem::path pfname() const { return nameBytes(); }
    void setPfname(const std::filesystem::path& name);
    [[nodiscard]] quint64 pfSize() const { return pfSize_; }
    /// Empty when the item is addressed by its name.
    [[nodiscard]] std::filesystem::path pfpath() const { return pathBytes(); }
    void setPfpath(const std::filesystem::path& path);
    [[nodiscard]] bool hasPath() const { return foundIn_ != nullptr && foundPathKind_ != FoundPathKind::sectionFolder; }
    /// What the path of `FoundIn` names.
    enum class FoundPathKind : quint8 {
        folder,         ///< the folder of the item
        wholePath,      ///< the item itself, which is listed under another name than its own
        sectionFolder,  ///< the section's folder; the item has no path and is addressed by its name
    };
    /// Replaces the path.
    void setFoundIn(std::shared_ptr<const FoundIn> place, FoundPathKind kind) {
        foundIn_ = std::move(place);
        foundPathKind_ = kind;
    }
    /// Where a scan found it; null if none did.
    [[nodiscard]] const std::shared_ptr<const FoundIn>& foundIn() const { return foundIn_; }
    /// Its path, or its name in the folder where it was found; empty if neither is known.
    [[nodiscard]] std::filesystem::path location() const;
    /// The path as plain bytes, cheaper than a filesystem path; empty if there is none.
    [[nodiscard]] std::string pathBytes() const;
    /// True only if both lie in one folder; may be false even if they do.
    [[nodiscard]] bool isBeside(const FFItem& other) const {
        return !hasTargets() && !other.hasTargets() && foundPathKind_ == FoundPathKind::folder &&
               other.foundPathKind_ == FoundPathKind::folder && foundIn_ == other.foundIn_;
    }
    /// Whether this item is ticked along with an item that holds it, or with all others.
    [[nodiscard]] bool mayBeTickedAlong() const { return ppbDeletable() && !isTickedByHandOnly(); }
    [[nodiscard]] bool isTickedByHandOnly() const override { return engine::isTickedByHandOnly(note_); }

    /// Why the user should look at it first. To be set before the item is posted.
    [[nodiscard]] ItemNote note() const { return note_; }
    void setNote(ItemNote note) { note_ = note; }
    /// The note as one sentence for people, on one line whatever its argument holds; empty without a note.
    [[nodiscard]] QString noteText() const;
    [[nodiscard]] const ItemDetails& details() const;
    /// Whether it stands for several things, and its own path is never removed.
    [[nodiscard]] bool hasTargets() const { return extras_ != nullptr && !extras_->details.targets.empty(); }
    /// What a removal acts on: the paths of its targets, or its own; none if it has no path.
    [[nodiscard]] std::vector<std::filesystem::path> removalPaths() const;
    /// To be called before the item is posted.
    void setDetails(ItemDetails details) { extras().details = std::move(details); }

    /// The digest of its identity when it was found; 0 if that is not known. To be set before the item is posted.
    [[nodiscard]] quint64 identity() const { return identity_; }
    void setIdentity(quint64 digest) { identity_ = digest; }

    [[nodiscard]] QString ppdisplayName() const override;
    [[nodiscard]] QString ppdisplayKeyName() const override;
    [[nodiscard]] quint64 getSpace2Save() const override { return pfSize_; }
    [[nodiscard]] quint64 getSpace2SaveBySel() const override { return ppbChecked() && ppbDeletable() ? pfSize_ : 0; }
    /// May grow while partners of `sharedFiles` are removed.
    [[nodiscard]] quint64 frees() const override {
        return frees_ + (extras_ == nullptr ? 0 : extras_->freesAlone.load());
    }
    /// What removing it frees, settled. To be called before the item is posted.
    void setSpace(files::ReclaimableSpace space);
    /// The files of which it holds some names and not all, in order, as they were when it was found; null if none.
    [[nodiscard]] const std::vector<files::NamedNode>* sharedFiles() const {
        return extras_ == nullptr || extras_->sharedFiles.empty() ? nullptr : &extras_->sharedFiles;
    }
    /// Bytes on disk of those of its shared files whose further names have been removed since; for items that have
    /// some. Any thread may read `frees`.
    void setFreesAlone(quint64 bytes) { extras().freesAlone = bytes; }

private:
    /// What most items are without. Made before the item is posted, and never exchanged after it.
    struct Extras {
        ItemDetails details;
        std::vector<files::NamedNode> sharedFiles;
        std::atomic<quint64> freesAlone = 0;
    };

    [[nodiscard]] Extras& extras() {
        if (extras_ == nullptr) {
            extras_ = std::make_unique<Extras>();
        }
        return *extras_;
    }
    [[nodiscard]] const char* nameBytes() const { return pfname_ == nullptr ? "" : pfname_.get(); }
    void setName(const std::string& bytes);

    FoundPathKind foundPathKind_ = FoundPathKind::folder;
    ItemNote note_ = ItemNote::none;
    IconSource pIcon_;
    std::unique_ptr<char[]> pfname_;  ///< NUL-terminated bytes; null for an empty name
    quint64 pfSize_ = 0;
    quint64 frees_ = 0;
    quint64 identity_ = 0;
    std::shared_ptr<const FoundIn> foundIn_;  ///< null if only the name is known
    std::unique_ptr<Extras> extras_;          ///< null if it has none
};

}  // namespace brimvault::engine
