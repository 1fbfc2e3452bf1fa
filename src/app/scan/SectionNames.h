#pragma once

#include <QLatin1String>
#include <array>

#include "engine/Section.h"

namespace brimvault::app {

/// A section as the scan prints it.
struct SectionName {
    engine::Section section = {};
    QLatin1String title;  ///< for people

    [[nodiscard]] QLatin1String id() const { return QLatin1String(engine::idOf(section)); }
};

/// In the window's order, which is that of everything that is printed.
inline constexpr std::array<SectionName, engine::allSections.size()> sectionNames = {{
    {engine::Section::caches, QLatin1String("Caches")},
    {engine::Section::languageResources, QLatin1String("Language Resources")},
    {engine::Section::logs, QLatin1String("Logs")},
    {engine::Section::downloads, QLatin1String("Downloads")},
    {engine::Section::trash, QLatin1String("Trash")},
}};

}  // namespace brimvault::app
