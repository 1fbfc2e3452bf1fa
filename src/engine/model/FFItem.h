#pragma once

#include <QList>
#include <QString>
#include <filesystem>
#include <memory>
#include <string>

#include "engine/ItemArrays.h"
#include "engine/model/CleanableItem.h"
#include "engine/model/FoundIn.h"
#include "files/NodeStatus.h"

namespace brimvault::engine {

/// What the window needs to find an item's picture: what the item was when it was found.
struct IconSource {
    files::NodeKind kind = files::NodeKind::other;
    bool operator==(const IconSource&) const = default;
};

/// One file or folder that can be removed, of the Downloads, Caches, Trash or Logs section. There may be hundreds of
/// thousands, so that items of one folder share its path.
class FFItem final : public CleanableItem {
public:
    /// Name and size in bytes; no path: the item is addressed by its name inside its section's folder.
    static std::shared_ptr<FFItem> initWithName(const std::filesystem::path& name, quint64 nsz);
    /// Full path and size in bytes; the name is the path's last component.
    static std::shared_ptr<FFItem> initWithPath(const std::filesystem::path& path, quint64 nsz);

    [[nodiscard]] IconSource getDisplayIcon() const { return pIcon_; }
    void setIcon(IconSource icon) { pIcon_ = icon; }
    /// Bytes, to be used as a file name again; `ppdisplayName` is for people.
    [[nodiscard]] std::filesystem::path pfname() const { return nameBytes(); }
    void setPfname(const std::filesystem::path& name);
    [[nodiscard]] quint64 pfSize() const { return pfSize_; }
    /// Empty when the item is addressed by its name.
    [[nodiscard]] std::filesystem::path pfpath() const { return pathBytes(); }
    void setPfpath(const std::filesystem::path& path);
    [[nodiscard]] bool hasPath() const { return holder_ != nullptr && holderKind_ != Holder::sectionFolder; }
    /// How an item lies in what it was found in.
    enum class Holder : quint8 {
        folder,         ///< under its name
        wholePath,      ///< under another name: the place names the item itself
        sectionFolder,  ///< under its name, by which alone it is addressed
    };
    /// Takes the place of the path.
    void setFoundIn(std::shared_ptr<const FoundIn> place, Holder kind) {
        holder_ = std::move(place);
        holderKind_ = kind;
    }
    /// Where a scan has found it; null when none has.
    [[nodiscard]] const std::shared_ptr<const FoundIn>& foundIn() const { return holder_; }
    /// Where it lies: its path, or its name in the folder in which it was found; empty when neither is known.
    [[nodiscard]] std::filesystem::path location() const;
    /// The path as the system takes it, made sooner than a path is; empty when there is none.
    [[nodiscard]] std::string pathBytes() const;
    /// Whether both are known to lie in one folder; two that do may answer NO.
    [[nodiscard]] bool isBeside(const FFItem& other) const {
        return holderKind_ == Holder::folder && other.holderKind_ == Holder::folder && holder_ == other.holder_;
    }
    /// Whether it is ticked along with an item that it lies in, or only when it is ticked itself.
    [[nodiscard]] bool mayBeTickedAlong() const { return ppbDeletable(); }

    [[nodiscard]] QString ppdisplayName() const override;
    [[nodiscard]] QString ppdisplayKeyName() const override;
    [[nodiscard]] quint64 getSpace2Save() const override { return pfSize_; }
    [[nodiscard]] quint64 getSpace2SaveBySel() const override { return ppbChecked() && ppbDeletable() ? pfSize_ : 0; }

private:
    [[nodiscard]] const char* nameBytes() const { return pfname_ == nullptr ? "" : pfname_.get(); }
    void setName(const std::string& bytes);

    Holder holderKind_ = Holder::folder;
    IconSource pIcon_;
    std::unique_ptr<char[]> pfname_;  ///< bytes, with a zero byte at their end; null for an empty name
    quint64 pfSize_ = 0;
    std::shared_ptr<const FoundIn> holder_;  ///< null when it is known by its name alone
};

}  // namespace brimvault::engine
