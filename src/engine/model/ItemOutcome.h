#pragma once

#include <QString>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

#include "engine/Section.h"
#include "engine/model/FFItem.h"
#include "engine/model/LocalizationItem.h"

namespace brimvault::engine {

/// What became of one item that was to be removed. A value.
struct ItemOutcome {
    std::optional<Section> section = {};            ///< none if it was in no list
    std::vector<std::filesystem::path> paths = {};  ///< what was acted on: its own path, or those that it stands for
    quint64 bytes = 0;                              ///< that its removal was to free
    std::optional<std::uint64_t> device = {};       ///< where it was found; none if no scan found it
    bool gone = false;                              ///< also if it was emptied
    QString reason = {};                            ///< why it is not gone, for people
    qsizetype emptied = 0;  ///< files of it that were emptied and not removed, since processes write to them
};

/// Called on the thread that removes, which waits for it: does nothing that may block.
using OutcomeHandler = std::function<void(const ItemOutcome&)>;

/// The bytes that the removal of an item is to free.
[[nodiscard]] inline quint64 expectedToFree(const CleanableItem& item) { return item.frees(); }
[[nodiscard]] inline quint64 expectedToFree(const LocalizationItem& item) { return item.frees; }

/// The device on which a scan has found it; none if that is not known.
[[nodiscard]] inline std::optional<std::uint64_t> deviceOf(const std::shared_ptr<const FoundIn>& foundIn) {
    return foundIn != nullptr && foundIn->folder ? std::optional(foundIn->folder->device) : std::nullopt;
}
[[nodiscard]] inline std::optional<std::uint64_t> deviceOf(const FFItem& item) {
    return deviceOf(item.hasTargets() ? item.details().targets.front().folder : item.foundIn());
}

}  // namespace brimvault::engine
