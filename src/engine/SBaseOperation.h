#pragma once

#include <QtGlobal>
#include <filesystem>
#include <optional>

#include "engine/SectionOperation.h"
#include "files/DirectoryHandle.h"

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
    void setTopLevelItemsCount(qint64 count) { nTopLevelItemsCount_ = count; }

private:
    qint64 nTopLevelItemsCount_ = 0;
};

}  // namespace brimvault::engine
