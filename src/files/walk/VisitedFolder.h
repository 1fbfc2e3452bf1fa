#pragma once

#include <atomic>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "files/NodeStatus.h"

namespace brimvault::files {

/// A folder of a walk. Shared by all workers in this folder or below.
struct VisitedFolder : std::enable_shared_from_this<VisitedFolder> {
    VisitedFolder(std::string itsName, std::shared_ptr<VisitedFolder> itsHolder)
        : name(std::move(itsName)), holder(std::move(itsHolder)) {}
    VisitedFolder(const VisitedFolder&) = delete;
    VisitedFolder& operator=(const VisitedFolder&) = delete;
    /// Without recursion, however deep the folder is.
    ~VisitedFolder();

    /// Its path from the first folder's name on, for a report.
    [[nodiscard]] std::filesystem::path position() const;

    const std::string name;                 ///< in its parent folder
    std::shared_ptr<VisitedFolder> holder;  ///< null for the first one
    /// Identifies the folder when it is reopened. Set before its handle is closed and before another worker gets it.
    std::optional<NodePlace> place;
    int listingCode = 0;  ///< the errno value with which the listing broke off; what it gave is visited. 0: it did not
    /// Outstanding parts (reference count): shares of its own entries, and subfolders that other workers finish. The
    /// worker that drops it to 0 finishes the folder.
    std::atomic<int> parts = 1;
};

}  // namespace brimvault::files
