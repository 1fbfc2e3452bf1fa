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

/// The base of every scan operation. Its `main`, on a thread of the scan queue, counts first
/// (`initTopLevelItemsCount`), then collects, looking at `isCancelled` before each item, and always posts its section's
/// finished notification with all it found, also when it is cancelled under way or fails. (One that is cancelled before
/// it began has found nothing, and does not run.)
class SBaseOperation : public SectionOperation {
public:
    using SectionOperation::SectionOperation;

    /// How many items are expected, for the progress.
    [[nodiscard]] qint64 nTopLevelItemsCount() const { return nTopLevelItemsCount_; }

    /// The section's folder; none when there is no such folder.
    [[nodiscard]] virtual std::optional<std::filesystem::path> getOperationRootFolderURL() const {
        return std::nullopt;
    }
    /// Sets the expected count to the visible entries directly in the root folder.
    virtual void initTopLevelItemsCount();
    /// Entries directly in the root folder; 0 when it is missing or cannot be read.
    [[nodiscard]] virtual qint64 countTopItemsInOperFolder(files::HiddenEntries hidden) const;
    /// Logical size in bytes of a file, a link itself, or all that a folder holds; 0 when there is nothing. Returns
    /// early, with less, once the operation is cancelled.
    [[nodiscard]] virtual quint64 getFileFolderSize(const std::filesystem::path& path) const;
    /// The same of a name in an open folder.
    [[nodiscard]] quint64 getFileFolderSize(const files::DirectoryHandle& folder, const char* name) const;

protected:
    /// Posts the finished notification, of nothing found; who knows what was found by then posts that.
    void failed() override;
    /// A root folder of the section, looked up at the first question and, if it is there, held from then on.
    [[nodiscard]] const platform::SectionRoot& root(const std::filesystem::path& named) const;
    /// The same where what is in it is to be listed: none where the folder is refused, or is one that was given before
    /// under another name.
    [[nodiscard]] const platform::SectionRoot* rootToList(const std::filesystem::path& named) const;
    /// Lets go of the root folders, and posts where they are, and which others were looked into for the scan. At its
    /// end, before it posts what it found.
    void leaveRoots(const Places& others = {});

    void setTopLevelItemsCount(qint64 count) { nTopLevelItemsCount_ = count; }

private:
    struct NamedRoot {
        platform::SectionRoot root;
        bool isGivenBefore;
    };
    const NamedRoot& namedRoot(const std::filesystem::path& named) const;

    qint64 nTopLevelItemsCount_ = 0;
    mutable std::map<std::filesystem::path, NamedRoot> roots_;  ///< the thread of the scan
};

}  // namespace brimvault::engine
