#pragma once

#include <QList>
#include <QString>
#include <filesystem>
#include <memory>

#include "engine/CleanableItem.h"
#include "files/NodeStatus.h"

namespace brimvault::engine {

/// What the window needs to find an item's picture: what the item was when it was found.
struct IconSource {
    files::NodeKind kind = files::NodeKind::other;
    bool operator==(const IconSource&) const = default;
};

/// One file or folder that can be removed, of the Downloads, Caches, Trash or Logs section.
class FFItem final : public CleanableItem {
public:
    /// Name and size in bytes; no path: the item is addressed by its name inside its section's folder.
    static std::shared_ptr<FFItem> initWithName(const std::filesystem::path& name, quint64 nsz);
    /// Full path and size in bytes; the name is the path's last component.
    static std::shared_ptr<FFItem> initWithPath(const std::filesystem::path& path, quint64 nsz);

    [[nodiscard]] IconSource getDisplayIcon() const { return pIcon_; }
    void setIcon(IconSource icon) { pIcon_ = icon; }
    /// Bytes, to be used as a file name again; `ppdisplayName` is for people.
    [[nodiscard]] const std::filesystem::path& pfname() const { return pfname_; }
    void setPfname(const std::filesystem::path& name) {
        pfname_ = name;
        nameChanged();
    }
    [[nodiscard]] quint64 pfSize() const { return pfSize_; }
    /// Empty when the item is addressed by its name.
    [[nodiscard]] const std::filesystem::path& pfpath() const { return pfpath_; }
    void setPfpath(const std::filesystem::path& path) { pfpath_ = path; }

    [[nodiscard]] QString ppdisplayName() const override;
    [[nodiscard]] QString ppdisplayKeyName() const override;
    [[nodiscard]] quint64 getSpace2Save() const override { return pfSize_; }
    [[nodiscard]] quint64 getSpace2SaveBySel() const override { return ppbChecked() && ppbDeletable() ? pfSize_ : 0; }

private:
    IconSource pIcon_;
    std::filesystem::path pfname_;
    quint64 pfSize_ = 0;
    std::filesystem::path pfpath_;
};

/// Copies share their elements until one is changed, so handing one to another thread costs nothing and what is handed
/// over does not change there.
using ItemArray = QList<std::shared_ptr<FFItem>>;

}  // namespace brimvault::engine
