#pragma once

#include <atomic>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "files/NodeStatus.h"

namespace brimvault::files {

/// A folder of a walk, as all know it who work in it or below it.
struct VisitedFolder {
    VisitedFolder(std::string itsName, std::shared_ptr<VisitedFolder> itsHolder)
        : name(std::move(itsName)), holder(std::move(itsHolder)) {}
    VisitedFolder(const VisitedFolder&) = delete;
    VisitedFolder& operator=(const VisitedFolder&) = delete;
    /// However deep it lies, without recursion.
    ~VisitedFolder();

    /// From the first folder's name on, for a report.
    [[nodiscard]] std::filesystem::path position() const;

    const std::string name;                 ///< in the folder that holds it
    std::shared_ptr<VisitedFolder> holder;  ///< null for the first one
    /// Known before its handle is closed, and before anybody else works in it or below: by this it is known again.
    std::optional<NodePlace> place;
    int listingCode = 0;  ///< the errno value with which the listing broke off; what it gave is visited. 0: it did not
    /// What has to be finished before the folder is: the shares of its own entries, and the folders in it that were
    /// left to others to be finished. Who finishes the last is who leaves the folder.
    std::atomic<int> parts = 1;
};

}  // namespace brimvault::files
