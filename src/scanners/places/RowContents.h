#pragma once

#include <filesystem>
#include <stop_token>
#include <vector>

#include "engine/model/FFItem.h"
#include "files/OpenFiles.h"
#include "scanners/places/CacheNames.h"
#include "scanners/places/FoundPlaces.h"

namespace brimvault::scanners {

/// What a row of places stands for, measured and judged. In a ticked row stays what would not be ticked by itself, but
/// for what a program has open: then the row is in use.
class RowContents {
public:
    /// What all rows of a scan have in common.
    struct Scan {
        const CacheNames& names;
        const files::OpenFiles& open;
        std::stop_token stop;  ///< after a stop the contents are incomplete
    };

    /// Blocks as the disk does; pool threads help. The row outlives the contents.
    RowContents(const PlaceRow& row, const Scan& scan);

    /// Whether there is nothing to list.
    [[nodiscard]] bool isNothing() const;
    [[nodiscard]] const files::ItemFindings& found() const { return found_; }
    [[nodiscard]] const Judgement& judgement() const { return judgement_; }
    /// Empty for a row that stands for its path.
    [[nodiscard]] const std::vector<engine::ItemTargets>& targets() const { return targets_; }

private:
    struct OpenedFolder {
        const files::DirectoryHandle& handle;
        const std::filesystem::path& path;
    };
    void measurePath();
    void measureFolder(const PlaceFolder& folder);
    void measureChildren(const PlaceFolder& folder, const files::DirectoryHandle& handle);
    void addTarget(const OpenedFolder& in, const char* name, const files::ItemFindings& found, const Judgement& judged);
    void add(const files::ItemFindings& more, engine::ItemNote note);

    const PlaceRow& row_;
    const Scan scan_;
    files::ItemFindings found_;
    Judgement judgement_;
    std::vector<engine::ItemTargets> targets_;
};

}  // namespace brimvault::scanners
