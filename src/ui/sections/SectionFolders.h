#pragma once

#include <filesystem>
#include <vector>

#include "engine/Section.h"

namespace brimvault::ui {

/// Where the items of a section lie. Any thread; blocks as long as the disk does.
class SectionFolders {
public:
    /// The section's own folders, that in which the user would look for them first. They need not be there; empty where
    /// the system names none.
    [[nodiscard]] static std::vector<std::filesystem::path> of(engine::Section section);
};

}  // namespace brimvault::ui
