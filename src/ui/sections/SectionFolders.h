#pragma once

#include <filesystem>
#include <vector>

#include "engine/Section.h"

namespace brimvault::ui {

/// Where the items of a section lie. Any thread; blocks as long as the disk does.
class SectionFolders {
public:
    /// The section's own folders, first the one in which the user would look. They need not exist; empty if the system
    /// names none.
    [[nodiscard]] static std::vector<std::filesystem::path> of(engine::Section section);
};

}  // namespace brimvault::ui
