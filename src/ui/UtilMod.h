#pragma once

#include <filesystem>

#include "engine/FFItem.h"

namespace brimvault::ui {

/// What the lists need to know of an item's place. Main thread.
class UtilMod {
public:
    /// The item's own path, or that of its name in the folder.
    [[nodiscard]] static std::filesystem::path getFullPathToItem(const engine::FFItem& item,
                                                                 const std::filesystem::path& folder);
    [[nodiscard]] static std::filesystem::path getFullCachePathToItem(const engine::FFItem& item);
};

}  // namespace brimvault::ui
