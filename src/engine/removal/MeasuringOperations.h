#pragma once

#include <memory>
#include <optional>

#include "engine/model/AppItemData.h"
#include "engine/model/FFItem.h"
#include "engine/model/SharedSpace.h"
#include "engine/operations/SectionOperation.h"
#include "engine/removal/FreedSpaceMeter.h"

namespace brimvault::engine {

/// What a clean works on, by section; none of a section that is not cleaned.
struct CleanedItems {
    std::optional<ApplicationArray> applications;
    PerSection<std::optional<ItemArray>> files;
    PerSection<std::shared_ptr<const AgreedItems>> agreed;  ///< null for all that is ticked
    std::shared_ptr<const SharedGroups> shared;             ///< of all items, ticked or not; null if nothing is known
};

/// Reads the free space before a clean. Runs on the clean queue, before what removes.
class MeasureBeforeClean final : public Operation {
public:
    MeasureBeforeClean(std::shared_ptr<FreedSpaceMeter> meter, CleanedItems items)
        : meter_(std::move(meter)), items_(std::move(items)) {}

protected:
    void main() override;

private:
    const std::shared_ptr<FreedSpaceMeter> meter_;
    CleanedItems items_;
};

/// Reads it again after the clean, and posts "spaceFreed" unless nothing can be told. Not on the clean queue, since the
/// volumes may take seconds.
class MeasureAfterClean final : public Operation {
public:
    explicit MeasureAfterClean(std::shared_ptr<FreedSpaceMeter> meter) : meter_(std::move(meter)) {}

protected:
    void main() override;

private:
    const std::shared_ptr<FreedSpaceMeter> meter_;
};

}  // namespace brimvault::engine
