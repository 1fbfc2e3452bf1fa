#pragma once

#include <QtGlobal>
#include <filesystem>
#include <map>
#include <optional>

#include "engine/notification/Notification.h"
#include "engine/operations/SectionOperation.h"
#include "files/DirectoryHandle.h"
#include "platform/SectionRoots.h"

namespace brimvault::engine {

/// The base of every scan operation. Its `main`, on a thread of the scan queue, first counts
/// (`initTopLevelItemsCount`), then collects, polling `isCancelled` before each item. It always posts its section's
/// finished notification with all that it found, even if it is cancelled or fails meanwhile. (One that is cancelled
/// before it began does not run.)
class SBaseOperation : public SectionOperation {
public:
    using SectionOperation::SectionOperation;

    /// How many items are expected, for the progress.
    [[nodiscard]] qint64 nTopLevelItemsCount() const { return nTopLevelItemsCount_; }

    /// The section's folder; none if there is no such folder.
    [[nodiscard]] virtual std::optional<std::filesystem::path> getOperationRootFolderURL() const {
        return std::nullopt;
    }
    /// Sets the expected count to the visible entries directly in the root folder.
    virtual void initTopLevelItemsCount();
    /// Entries directly in the root folder; 0 if it is missing or cannot be read.
    [[nodiscard]] virtual qint64 countTopItemsInOperFolder(files::HiddenEntries hidden) const;
    /// Logical size in bytes of a file, a symbolic link itself, or all that a folder holds; 0 if there is nothing.
    /// Returns early with a partial sum once the operation is cancelled. Kept for callers outside of the window: scans
    /// ask for what an item frees as well.
    [[nodiscard]] virtual quint64 getFileFolderSize(const std::filesystem::path& path) const;

protected:
    /// Posts the finished notification with nothing found; subclasses post what they have found.
    void failed() override;
    /// A root folder of the section: looked up at the first call and, if it exists, kept open from then on.
    [[nodiscard]] const platform::SectionRoot& root(const std::filesystem::path& named) const;
    /// The same for listing: null if the folder is refused, or is the same as an earlier one under another name.
    [[nodiscard]] const platform::SectionRoot* rootToList(const std::filesystem::path& named) const;
    /// Closes the root folders, and posts their places and those of other folders that the scan looked into. Called at
    /// its end, before it posts what it found.
    void closeRoots(const Places& others = {});

    void setTopLevelItemsCount(qint64 count) { nTopLevelItemsCount_ = count; }

private:
    struct NamedRoot {
        platform::SectionRoot root;
        bool isDuplicate;
    };
    const NamedRoot& namedRoot(const std::filesystem::path& named) const;

    qint64 nTopLevelItemsCount_ = 0;
    mutable std::map<std::filesystem::path, NamedRoot> roots_;  ///< used by the scan's thread only
};

}  // namespace brimvault::engine
